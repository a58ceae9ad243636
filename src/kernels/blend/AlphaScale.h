#pragma once

#include <cstdint>

#include "core/ByteArithmetic.h"
#include "krlimage/engine.h"

/// Colour weighted by its own alpha: what filters sum and compare where transparent pixels must not
/// count as much as opaque ones.
namespace krl {

/// The pixel with its colour bytes scaled by its alpha, which stays.
constexpr Pixel scaledByAlpha(Pixel p) {
    return {scaledByte(p.alpha, p.blue), scaledByte(p.alpha, p.green), scaledByte(p.alpha, p.red), p.alpha};
}

/// Scales `count` adjacent pixels into `scaled`, which may be the same span.
void scaleByAlpha(const Pixel* pixels, Pixel* scaled, int32_t count);

/// Whether the alpha of `count` adjacent pixels is 255: weighing leaves such pixels as they are.
bool areOpaque(const Pixel* pixels, int32_t count);
/// Whether any pixel's alpha is not 255.
bool hasTransparency(const ImageBuffer& image);

}  // namespace krl
