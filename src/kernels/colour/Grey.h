#pragma once

#include <cstdint>

#include "core/Bands.h"
#include "core/Batch.h"
#include "krlimage/engine.h"

/// The two greys of a colour: the mean of its channels, and luma.
namespace krl {

/// A third of the sum of three bytes; exact for every such sum.
constexpr uint32_t thirdOf(uint32_t sum) { return sum * 21846u >> 16; }

/// The mean of a pixel's three colour bytes.
constexpr uint8_t meanColour(Pixel p) {
    return static_cast<uint8_t>(thirdOf(static_cast<uint32_t>(p.blue + p.green + p.red)));
}

/// 0.299 red + 0.587 green + 0.114 blue of three levels, each product in single precision as the shared
/// tables have it. Their sum is exact.
inline double lumaOf(int32_t red, int32_t green, int32_t blue) {
    const float redPart = static_cast<float>(red * 299) / 1000.0f;
    const float greenPart = static_cast<float>(green * 587) / 1000.0f;
    const float bluePart = static_cast<float>(blue * 114) / 1000.0f;
    return double{bluePart} + greenPart + redPart;
}

/// Replaces the colour of every pixel of a span by the mean of its three bytes.
void takeMeans(Pixel* first, Pixel* last);

/// Replaces the colour of the loaded image by its means, in bands, and calls `then(first, last)` with
/// one batch of them after another while it is still in the nearest cache.
template <class Then>
Status recolourByMean(const ImageEngine& engine, Then&& then) {
    constexpr size_t kBatch = 2048;  // a longer one, as one pass is all that is done with it
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        forEachBatch<kBatch>(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
            takeMeans(first + start, first + start + count);
            then(first + start, first + start + count);
        });
    });
}

}  // namespace krl
