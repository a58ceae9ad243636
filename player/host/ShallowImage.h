#pragma once

#include <cstdint>
#include <vector>

#include "player/host/Palette.h"
#include "player/pictures/Picture.h"

/// Images of less than 32 bits a pixel as hosts keep them in memory: 1, 2, 4 or 8 bits of an index in a
/// palette, the first pixel in the highest bits, 16 as 5 each of red, green and blue, 24 as blue, green and
/// red; each row filled up to a multiple of four bytes.
namespace krl::player {

struct PixelFormat {
    int32_t depth;
    Palette palette;  ///< up to 8 bits
};

int32_t rowBytesOf(int32_t width, int32_t depth);

/// The image's rows, one after another.
std::vector<uint8_t> shallowRows(const Bitmap& image, PixelFormat format);

/// Takes over what has changed in `rows` since `shallowRows` made them; alpha stays.
void takeShallowRows(const std::vector<uint8_t>& rows, PixelFormat format, Bitmap& image);

/// Gives the pixels from `left`, `top` to before `right`, `bottom` the nearest colours that the format has.
void settle(Bitmap& image, PixelFormat format, int32_t left, int32_t top, int32_t right, int32_t bottom);

}  // namespace krl::player
