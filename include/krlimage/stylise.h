#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Effects that restyle the picture: blocks, strokes, tiles and a fade toward the edges.
///
/// Every effect first tests the state: `kStatusNoImage` without a picture, `kStatusNoPixels` for one without
/// pixels. `kStatusNoTaskMemory` or `kStatusThreadFailed` says that a band could not be started.
namespace krl {

/// Makes blocks of `amount` pixels (at least 2) to a side, each of one value. The mean is taken over one
/// sample more than a block holds, so a mosaic is slightly darker than its picture. Any target but `RGBA` and
/// `RGB` is `Alpha`.
Status mosaic(ImageEngine& engine, int32_t amount, ChannelTarget target);

/// Each pixel takes the mean colour, scaled by alpha, of those pixels within `brushSize` (1..5) that share
/// the most frequent of `intensity` (10..255) levels of brightness, the darkest of equals. Alpha stays.
Status oilPaint(ImageEngine& engine, int32_t brushSize, int32_t intensity);

/// Each pixel takes the mean of the four that are `distance` above, below, left and right of it, the nearest
/// pixel of the picture in place of one outside. `RGBA` scales colours by alpha.
Status fragment(ImageEngine& engine, int32_t distance, ChannelTarget target);

/// Shifts each tile of `tileW` by `tileH` pixels by up to half of `random`, drawn from `seed`; a value below
/// 1 counts as 1. Row 0 and column 0 are neither read nor written. Each band lays a grid of its own from its
/// first row on and draws from the offsets of the tile that it takes that row to be in, so the result depends
/// on the number of bands; where tiles overlap the later one is seen.
Status tile(ImageEngine& engine, int32_t tileW, int32_t tileH, int32_t random, int32_t seed,
            ChannelTarget target);

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

/// What a vignette looks like. Numbers beyond a range count as its limit.
struct VignetteSettings {
    VignetteShape shape = VignetteShape::Ellipse;
    Colour colour = {};
    int32_t transparency = 255;          ///< strength of the cover, 0..255; 255 covers
    float scaleX = 1.0f, scaleY = 1.0f;  ///< size of the shape over that of the picture, 0..2
    int32_t offsetX = 0, offsetY = 0;    ///< shift right and down in percent of the size, -100..100
    int32_t blur = 0;                    ///< softness of the shape's edge in pixels, from 0
    VignetteTarget target = VignetteTarget::RGB;
    bool isInverted = false;  ///< covers the inside in place of the outside
};

/// Covers what is outside a shape with a colour, or takes its alpha away. The shape is placed on a plane that
/// is larger than the picture by `blur` pixels all round. Throws `std::bad_alloc` if that plane would take 2
/// GiB.
Status vignette(ImageEngine& engine, const VignetteSettings& settings);

}  // namespace krl
