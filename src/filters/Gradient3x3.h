#pragma once

#include <cmath>
#include <cstdint>

#include "core/ImageEngine.h"
#include "core/Numbers.h"
#include "filters/ChannelMask.h"

/// Gradients over the eight neighbours of a pixel, and what becomes of the border, where a pixel
/// has not all eight.
namespace krl {

/// The two weighted differences of one channel across a pixel.
struct SobelSums {
    int32_t vertical = 0;    ///< the row below less the row above, weighted 1, 2, 1
    int32_t horizontal = 0;  ///< the left column less the right, weighted 1, 2, 1
};

/// The sums at one byte of a pixel; the pointers are to that byte in three rows, and the bytes of
/// the pixels left and right of it are read too.
inline SobelSums sobelSums(const uint8_t* above, const uint8_t* at, const uint8_t* below) {
    constexpr int32_t kLeft = -4, kRight = 4;
    return {below[kLeft] - above[kLeft] + 2 * (below[0] - above[0]) + below[kRight] - above[kRight],
            above[kLeft] + 2 * at[kLeft] + below[kLeft] - above[kRight] - 2 * at[kRight] - below[kRight]};
}

/// Length of the gradient, truncated and limited to 0..255.
inline uint8_t sobelStrength(const SobelSums& sums) {
    const int32_t square = sums.vertical * sums.vertical + sums.horizontal * sums.horizontal;
    return truncatedByte(std::sqrt(static_cast<double>(square)));
}

/// The strength of all four bytes of `count` adjacent pixels, of which `at` is the first and which
/// stand between the rows `above` and `below`. None of them may lie on the picture's border.
void sobelStrengths(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count, Pixel* strengths);

/// Gives every border pixel the masked bytes of its nearest inner pixel; a corner takes its diagonal
/// neighbour. A picture under 3 pixels in either direction has no inner pixel and stays as it is.
void repairBorder(const ImageBuffer& image, ChannelMask mask);

}  // namespace krl
