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

/// Calls `work(Pixel* first, size_t count, const Pixel* beside)` for each band's run of pixels and those at
/// the same places of `other`, which is walked as one contiguous run. The sizes are the caller's to test.
template <class Work>
Status forEachRunBeside(const ImageEngine& engine, const SecondImage& other, Work&& work) {
    const ptrdiff_t available = ptrdiff_t(other.info.rowBytes) * other.info.height / ptrdiff_t(sizeof(Pixel));
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        const ptrdiff_t start = first - engine.buffer()->row(0);
        const ptrdiff_t count = std::min(last - first, available - start);
        if (count > 0) work(first, static_cast<size_t>(count), other.begin() + start);
    });
}

/// Calls `work(start, count)` for the chunks of a run of `count` pixels.
template <class Work>
void forEachChunk(size_t count, Work&& work) {
    for (size_t start = 0; start < count; start += kChunkPixels)
        work(start, std::min(kChunkPixels, count - start));
}

}  // namespace krl
