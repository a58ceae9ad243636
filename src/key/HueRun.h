#pragma once

#include <cstddef>

#include "core/Pixel.h"

namespace krl {

/// Writes the hue of each of `count` pixels, in degrees and -1 for a grey: what `rgbToHsv` gives,
/// many at a time.
void huesOf(const Pixel* pixels, ptrdiff_t count, float* hues);

}  // namespace krl
