#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Blurs that average samples along a path through each pixel. A sample outside the picture is the
/// nearest one inside. With `RGBA` colours count by their alpha, so that what is transparent does
/// not bleed in; with `RGB` or `Alpha` the bytes alone are averaged and the others stay.
///
/// - `motionBlur` along a straight line, the same for every pixel
/// - `radialBlur` along an arc about a point
/// - `zoomBlur`   along the ray through a point
namespace krl {

/// Trails of `motionBlur`.
enum class BlurCount : int32_t {
    Single = 15,  ///< to one side
    Double = 16,  ///< a second blur, in the opposite direction, over the first
};

/// Which way `zoomBlur` gathers along the ray.
enum class ZoomDirection : int32_t {
    In = 17,   ///< away from the point
    Out = 18,  ///< toward the point, and on past it
};

/// Averages the pixel and what follows it in direction `angle`, `distance` samples one pixel apart;
/// 0 and below change nothing. Where all of the samples are transparent, `RGBA` leaves a pixel as it
/// was. Any target but `RGBA` and `RGB` is `Alpha`.
Status motionBlur(ImageEngine& engine, int32_t distance, int32_t angle, BlurCount blurCount,
                  ChannelTarget target);

/// Averages an arc of `radialLength` degrees to each side about `radialPoint`, a sample for each
/// degree; a length below 1 changes nothing. Where all of the samples are transparent, `RGBA` leaves
/// a pixel as it was. A target of no kind writes nothing.
Status radialBlur(ImageEngine& engine, int32_t radialLength, Point radialPoint, ChannelTarget target);

/// Averages along the ray from `zoomPoint`, one pixel apart, as many samples as the distance from the
/// point times `zoomLength` over the picture's diagonal. A pixel that gets none stays as it was. A
/// target of no kind writes nothing.
Status zoomBlur(ImageEngine& engine, int32_t zoomLength, Point zoomPoint, ZoomDirection direction,
                ChannelTarget target);

}  // namespace krl
