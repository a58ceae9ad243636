#pragma once

#include <cstddef>

#include "krlimage/pixel.h"

namespace krl {

/// Writes the hue of each of `count` pixels in degrees: what `rgbToHsv` gives, many at a time, but
/// for greys, which get `greyHue`.
void huesOf(const Pixel* pixels, size_t count, float greyHue, float* hues);

}  // namespace krl
