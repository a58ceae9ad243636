#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/Bands.h"
#include "krlimage/engine.h"
#include "krlimage/pixel.h"

namespace krl {

/// How many pixels a block holds: enough for vectors, few enough for the nearest cache.
inline constexpr size_t kBlockPixels = 64;

/// A stretch of pixels with each colour in an array of its own. Loops over the arrays always run
/// through all `kBlockPixels`, so that the compiler makes vectors of them; lanes past the end of the
/// picture hold some colour or other and are not written back.
struct ColourLanes {
    int32_t blue[kBlockPixels], green[kBlockPixels], red[kBlockPixels];
};

/// Parts pixels, as words of 0xAARRGGBB, into their colours.
void partWords(const uint32_t (&words)[kBlockPixels], ColourLanes& block);
/// Puts the low byte of each lane back in its word; alpha stays.
void joinWords(const ColourLanes& block, uint32_t (&words)[kBlockPixels]);

/// Calls `recolour(ColourLanes&)` over a run of pixels, and stores what it makes of the colours.
template <class Recolour>
void recolourLanes(Pixel* first, Pixel* last, Recolour&& recolour) {
    uint32_t words[kBlockPixels] = {};
    ColourLanes block;
    while (first != last) {
        const size_t count = std::min(kBlockPixels, static_cast<size_t>(last - first));
        std::memcpy(words, first, count * sizeof(Pixel));
        partWords(words, block);
        recolour(block);
        joinWords(block, words);
        std::memcpy(first, words, count * sizeof(Pixel));
        first += count;
    }
}

/// The same over the loaded image, in bands.
template <class Recolour>
Status forEachLaneBatch(const ImageEngine& engine, Recolour&& recolour) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) { recolourLanes(first, last, recolour); });
}

}  // namespace krl
