#pragma once

#include "core/Scratch.h"
#include "krlimage/engine.h"

namespace krl {

/// Settings of the rays of a gleam zoom.
struct RaySettings {
    Point centre;              ///< where rays begin; it may lie outside
    float strength = 1;        ///< each byte of the source counts by this
    float falloff = 0;         ///< what is left of a sum after one step
    int32_t userDistance = 0;  ///< 0 leaves every pixel black; below it, what is left is the low byte of what
                               ///< the sum divided by it is
};

/// Casts the rays from the centre to every pixel of the border of a picture of `width` by `height` and puts
/// what they leave in place of `light`: black and clear where no ray comes. Tests for cancellation ray by
/// ray.
void castZoomRays(const ImageEngine& engine, Scratch<Pixel>& light, int32_t width, int32_t height,
                  const RaySettings& settings);

/// The same at double the size, each pixel of `light` being 2 by 2, and the mean of what they leave.
void castZoomRaysAntialiased(const ImageEngine& engine, Scratch<Pixel>& light, int32_t width, int32_t height,
                             const RaySettings& settings);

}  // namespace krl
