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

/// Calls `work(start, count)` for the chunks of a run of `count` pixels.
template <class Work>
void forEachChunk(size_t count, Work&& work) {
    for (size_t start = 0; start < count; start += kChunkPixels)
        work(start, std::min(kChunkPixels, count - start));
}

}  // namespace krl
