#pragma once

#include <algorithm>

#include "core/Bands.h"
#include "core/Batch.h"

namespace krl {

/// Pixels of the loaded image's block, padding included.
inline size_t blockPixels(const ImageBuffer& image) {
    return std::max(image.bytes() / sizeof(Pixel),
                    static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
}

/// Pixels at the beginning of the loaded image's block that `forEachSpanBeside` pairs with those of `other`.
inline ptrdiff_t pixelsBeside(const ImageEngine& engine, const SecondImage& other) {
    const ptrdiff_t loaded = pixelBand(engine, 1, 0).last;
    return std::clamp<ptrdiff_t>(loaded, 0, static_cast<ptrdiff_t>(other.block().size()));
}

}  // namespace krl
