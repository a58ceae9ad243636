#pragma once

#include <cstdint>
#include <cstring>

#include "core/Bands.h"
#include "core/Batch.h"

namespace krl {

/// The colours of a batch of pixels, each in an array of its own. Loops over the arrays always run through
/// all of `kBatchPixels`, so that the compiler makes vectors of them; lanes past the end of a span hold
/// arbitrary colours and are not written back.
struct ColourLanes {
    int32_t blue[kBatchPixels], green[kBatchPixels], red[kBatchPixels];
};

/// Splits pixels, as words of 0xAARRGGBB, into their colours.
void splitWords(const uint32_t (&words)[kBatchPixels], ColourLanes& colours);
/// Puts the low byte of each lane back in its word; alpha stays.
void joinWords(const ColourLanes& colours, uint32_t (&words)[kBatchPixels]);

/// Calls `recolour(ColourLanes&)` over a span of pixels, and stores what it makes of the colours.
template <class Recolour>
void recolourLanes(Pixel* first, Pixel* last, Recolour&& recolour) {
    uint32_t words[kBatchPixels] = {};
    ColourLanes colours;
    forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
        std::memcpy(words, first + start, count * sizeof(Pixel));
        splitWords(words, colours);
        recolour(colours);
        joinWords(colours, words);
        std::memcpy(first + start, words, count * sizeof(Pixel));
    });
}

/// The same over the loaded image, in bands.
template <class Recolour>
Status forEachLaneBatch(const ImageEngine& engine, Recolour&& recolour) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) { recolourLanes(first, last, recolour); });
}

}  // namespace krl
