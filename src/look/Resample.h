#pragma once

#include <cstdint>

#include "catalogue/Value.h"

namespace krl {

/// A size in pixels, and the place of its top left corner on another picture.
struct PlacedSize {
    int64_t width = 1, height = 1;
    int64_t left = 0, top = 0;
};

/// Draws `picture` in that size and place on `ground`, in the order of its own pixels; what is outside is
/// left out. Along a line that gets shorter, a pixel is the mean of what it covers; along one that gets
/// longer, it is between the two nearest. Colours count by their alpha.
void drawResampled(const Picture& ground, const Picture& picture, const PlacedSize& size);

}  // namespace krl
