#pragma once

#include <cstdint>

#include "krlimage/pixel.h"

namespace krl {

/// `words[i]` becomes the pixel at `pixels[offsets[i]]`, for `count` offsets.
void gatherPixels(const Pixel* pixels, const int32_t* offsets, int32_t count, uint32_t* words);

}  // namespace krl
