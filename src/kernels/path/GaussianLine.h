#pragma once

#include <cstdint>

#include "kernels/path/DigitalLine.h"

namespace krl {

/// A plane of bytes, one for each pixel of a picture, that light is added to.
struct LightMask {
    uint8_t* cells = nullptr;
    int32_t width = 0;

    uint8_t& at(int32_t x, int32_t y) const { return cells[ptrdiff_t(y) * width + x]; }
};

/// An antialiased line after Gupta and Sproull, three cells thick, that falls off as a Gaussian: every
/// cell gains up to twice `intensity`, saturating. The line is drawn `times` times over, within `box`
/// alone. A line of no length is one cell.
void gaussianLine(const LightMask& mask, const GridBox& box, Point from, Point to, int32_t intensity,
                  int32_t times);

}  // namespace krl
