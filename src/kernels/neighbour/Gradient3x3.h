#pragma once

#include <cstdint>

#include "core/Bands.h"
#include "core/Batch.h"
#include "core/ChannelMask.h"
#include "krlimage/engine.h"

/// Gradients over the eight neighbours of a pixel, and what becomes of the border, where a pixel
/// has not all eight.
namespace krl {

/// The strength of all four bytes of `count` adjacent pixels, of which `at` is the first and which
/// are between the rows `above` and `below`: the length of the gradient in Sobel's weights, truncated
/// and limited to 255. None of them may be on the picture's border.
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
