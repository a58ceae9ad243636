#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Effects that restyle the picture.
///
/// - `mosaic`   flat blocks
/// - `oilPaint` strokes of the level that is most frequent around a pixel
/// - `fragment` four copies side by side
/// - `tile`     tiles that have slipped out of place
/// - `vignette` a colour, or transparency, toward the picture's edges
namespace krl {

/// Shapes of the clear part of a vignette.
enum class VignetteShape : int32_t {
    Ellipse = 79,
    Rectangle = 80,
};

/// What a vignette covers the picture with.
enum class VignetteTarget : int32_t {
    RGB = 5,    ///< the colour
    Alpha = 6,  ///< transparency
};

/// Makes blocks of `amount` pixels (2 at least) to a side, each of one value. The mean is taken over
/// one sample more than a block holds, so a mosaic is slightly darker than its picture. Any target
/// but `RGBA` and `RGB` is `Alpha`.
Status mosaic(ImageEngine& engine, int32_t amount, ChannelTarget target);

/// Each pixel takes the mean colour, scaled by alpha, of those pixels within `brushSize` (1..5) that
/// share the most frequent of `intensity` (10..255) levels of brightness, the darkest of equals.
/// Alpha stays.
Status oilPaint(ImageEngine& engine, int32_t brushSize, int32_t intensity);

/// Each pixel takes the mean of the four that lie `distance` above, below, left and right of it, the
/// nearest pixel of the picture in place of one outside. `RGBA` scales colours by alpha.
Status fragment(ImageEngine& engine, int32_t distance, ChannelTarget target);

/// Shifts each tile of `tileW` by `tileH` pixels by up to half of `random`, drawn from `seed`; a value
/// below 1 counts as 1. Row 0 and column 0 are neither read nor written. Each band lays a grid of its
/// own from its first row on and draws from the offsets of the tile it takes that row to be in, so
/// the result depends on the number of bands; where tiles overlap the later one is seen.
Status tile(ImageEngine& engine, int32_t tileW, int32_t tileH, int32_t random, int32_t seed,
            ChannelTarget target);

/// Covers what is outside a shape with `colour`, or takes its alpha away, by `transparency` (0..255,
/// full at 255); `isInverted` covers the inside. The shape has the half sizes of the picture times
/// `scaleX` and `scaleY` (0..2) and is off the middle by `offsetX` and `offsetY` (-100..100) percent.
/// `blur` softens its edge, and the shape is placed on a plane that is larger by as much all round.
Status vignette(ImageEngine& engine, VignetteShape shape, Colour colour, int32_t transparency, float scaleX,
                float scaleY, int32_t offsetX, int32_t offsetY, int32_t blur, VignetteTarget target,
                bool isInverted);

}  // namespace krl
