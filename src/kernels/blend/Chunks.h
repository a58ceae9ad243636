#pragma once

#include <algorithm>

#include "core/Bands.h"

namespace krl {

/// Pixels that a composite works on together, so that what passes between its steps stays in the first
/// cache.
inline constexpr size_t kChunkPixels = 256;

/// Pixels of the loaded image's block, padding included.
inline size_t blockPixels(const ImageBuffer& image) {
    return std::max(image.bytes() / sizeof(Pixel),
                    static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
}

/// Pixels at the beginning of the loaded image's block that are walked beside `other`.
inline ptrdiff_t pixelsBeside(const ImageBuffer& image, const SecondImage& other) {
    const ptrdiff_t loaded = pixelBand(image, 1, 0).last;
    return std::clamp<ptrdiff_t>(loaded, 0, static_cast<ptrdiff_t>(other.block().size()));
}

/// Calls `work(start, count)` for the chunks of a run of `count` pixels.
template <class Work>
void forEachChunk(size_t count, Work&& work) {
    for (size_t start = 0; start < count; start += kChunkPixels)
        work(start, std::min(kChunkPixels, count - start));
}

}  // namespace krl
