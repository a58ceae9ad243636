#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/Bands.h"
#include "core/ImageEngine.h"
#include "core/Pixel.h"

namespace krl {

/// How many pixels a block holds: enough for vectors, few enough for the nearest cache.
inline constexpr size_t kBlockPixels = 64;

/// A stretch of pixels with each colour in an array of its own. Loops over the arrays always run
/// through all `kBlockPixels`, so that the compiler makes vectors of them; lanes past the end of the
/// picture hold some colour or other and are not written back.
struct ColourBlock {
    int32_t blue[kBlockPixels], green[kBlockPixels], red[kBlockPixels];
};

/// Calls `recolour(ColourBlock&)` over the loaded image, in bands, and stores the low byte of each
/// lane. Alpha stays.
template <class Recolour>
Status forEachColourBlock(const ImageEngine& engine, Recolour&& recolour) {
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        uint32_t words[kBlockPixels] = {};  // 0xAARRGGBB
        ColourBlock block;
        while (first != last) {
            const size_t count = std::min(kBlockPixels, static_cast<size_t>(last - first));
            std::memcpy(words, first, count * sizeof(Pixel));
            for (size_t i = 0; i < kBlockPixels; ++i) {
                block.blue[i] = static_cast<int32_t>(words[i] & 255u);
                block.green[i] = static_cast<int32_t>(words[i] >> 8 & 255u);
                block.red[i] = static_cast<int32_t>(words[i] >> 16 & 255u);
            }
            recolour(block);
            for (size_t i = 0; i < kBlockPixels; ++i)
                words[i] = (words[i] & 0xFF000000u) | (static_cast<uint32_t>(block.red[i]) & 255u) << 16 |
                           (static_cast<uint32_t>(block.green[i]) & 255u) << 8 |
                           (static_cast<uint32_t>(block.blue[i]) & 255u);
            std::memcpy(first, words, count * sizeof(Pixel));
            first += count;
        }
    });
}

}  // namespace krl
