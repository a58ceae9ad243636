#pragma once

#include <cstdint>
#include <vector>

#include "player/pictures/Picture.h"

/// Images of less than 32 bits a pixel as hosts keep them in memory: 8 bits of grey, 16 as 5 each of red,
/// green and blue, 24 as blue, green and red; each row filled up to a multiple of four bytes.
namespace krl::player {

int32_t rowBytesOf(int32_t width, int32_t depth);

/// The image's rows in `depth` bits, one after another.
std::vector<uint8_t> shallowRows(const Bitmap& image, int32_t depth);

/// Takes over what has changed in `rows` since `shallowRows` made them; alpha stays.
void takeShallowRows(const std::vector<uint8_t>& rows, int32_t depth, Bitmap& image);

}  // namespace krl::player
