#pragma once

#include <cmath>
#include <cstdint>

#include "core/Bands.h"
#include "core/Batch.h"
#include "core/ChannelMask.h"
#include "core/Numbers.h"
#include "krlimage/engine.h"

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
/// are between the rows `above` and `below`. None of them may be on the picture's border.
void sobelStrengths(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count, Pixel* strengths);

/// Runs `kernel(above, at, below, count, fresh)` over the inner pixels of row `y` of `source`, batch by
/// batch: `at` is the first of `count` pixels between the rows `above` and `below`, and `fresh` takes what
/// they become, of which the masked bytes go into `image`.
template <class Kernel>
void filterInnerRow(const ImageBuffer& source, const ImageBuffer& image, int32_t y, ChannelMask mask,
                    const Kernel& kernel) {
    if (y < 1 || y >= image.height - 1 || image.width < 3) return;
    Pixel fresh[kBatchPixels];
    forEachBatch(static_cast<size_t>(image.width - 2), [&](size_t start, size_t pixels) {
        const auto x = static_cast<int32_t>(start) + 1, count = static_cast<int32_t>(pixels);
        kernel(source.row(y - 1) + x, source.row(y) + x, source.row(y + 1) + x, count, fresh);
        mask.write(image.row(y) + x, fresh, count);
    });
}

/// Runs `kernel` as above over the whole image, banded by rows, and then repairs the border.
template <class Kernel>
Status filterInner(const ImageEngine& engine, const ImageBuffer& source, ChannelMask mask,
                   const Kernel& kernel);

/// Gives every border pixel the masked bytes of its nearest inner pixel; a corner takes its diagonal
/// neighbour. Rows go first, so of two rows both become the second, and so with columns. A picture
/// under 2 pixels in either direction has no neighbour to take from and stays as it is.
void repairBorder(const ImageBuffer& image, ChannelMask mask);

template <class Kernel>
Status filterInner(const ImageEngine& engine, const ImageBuffer& source, ChannelMask mask,
                   const Kernel& kernel) {
    const ImageBuffer& image = *engine.buffer();
    const Status status =
        forEachRow(engine, [&](Pixel*, int32_t y) { filterInnerRow(source, image, y, mask, kernel); });
    if (!status) repairBorder(image, mask);
    return status;
}

}  // namespace krl
