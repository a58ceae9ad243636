#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Edges and relief: what a pixel becomes by how it differs from its neighbours.
///
/// - `sobel`           dark edges on white by the length of the gradient
/// - `emboss`          a relief lit from one side
/// - `cannyEdgeDetect` the picture, inverted, where it has edges, and white elsewhere
/// - `glowingEdges`    the spread of each colour around a pixel, brightened
namespace krl {

/// Each byte of `target` becomes 255 less the length of its 3 by 3 gradient. The border takes the
/// nearest inner pixel; without an inner pixel all is white. Any target but `RGB` is `Alpha`.
Status sobel(ImageEngine& engine, ChannelTarget target);

/// Lights the picture as a relief from `azimuth` (0..360 degrees) and `elevation`; `strength` (1..50)
/// is the depth of the relief. A flat place takes the height of the light. Any target but `RGB` is
/// `Alpha`. Runs on the calling thread alone; `kStatusRefused` without pixels.
Status emboss(ImageEngine& engine, int32_t strength, float azimuth, float elevation, ChannelTarget target);

/// Keeps a byte, inverted, where its gradient reaches its two neighbours along the gradient's
/// direction and is not weak: `threshold` parts weak from strong, and a weak one stays if any
/// neighbour is above `threshold`. The rest is white. `blurAmount` above 0 softens the picture first.
/// Pictures under 2 pixels in either direction stay as they are.
Status cannyEdgeDetect(ImageEngine& engine, int32_t blurAmount, int32_t threshold, ChannelTarget target);

/// Each colour byte becomes the difference of the largest and the smallest within `size` (0..10)
/// pixels all round, times `brightness`. `smoothness` above 0 softens the picture first. Colours of
/// a picture with any alpha below 255 count scaled by alpha. Alpha stays. Pictures under 2 pixels in
/// either direction stay as they are.
Status glowingEdges(ImageEngine& engine, int32_t size, int32_t smoothness, float brightness);
}  // namespace krl
