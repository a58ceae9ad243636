#pragma once

#include <algorithm>
#include <array>

#include "core/Bands.h"
#include "core/Batch.h"

/// How a matte becomes alpha: the one rule of every key. `keep` can only lower the alpha that is
/// there and `remove` can only raise it.
namespace krl {

/// The alpha byte after a matte is folded in: `keep` takes the smaller of the alpha and the matte's
/// weight, `remove` (`keep` false) the larger. The weight is the matte where the two options agree
/// and its distance from 255 where they differ.
constexpr uint8_t applyKeyMatte(uint8_t alpha, uint8_t matte, bool keep, bool invert) {
    const auto weight = static_cast<uint8_t>(keep == invert ? matte : 255 - matte);
    return keep ? std::min(alpha, weight) : std::max(alpha, weight);
}

/// Folds `count` mattes into the alpha of the pixels beside them.
void foldMattes(Pixel* pixels, const uint8_t* mattes, size_t count, bool keep, bool invert);

/// Folds the mattes of a span of pixels into its alpha, batch by batch:
/// `mattesOf(const Pixel* pixels, size_t count, uint8_t* mattes)` writes `count` mattes.
template <class MattesOf>
void keySpan(Pixel* first, Pixel* last, bool keep, bool invert, MattesOf&& mattesOf) {
    std::array<uint8_t, kBatchPixels> mattes;
    forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t count) {
        mattesOf(static_cast<const Pixel*>(first + start), count, mattes.data());
        foldMattes(first + start, mattes.data(), count, keep, invert);
    });
}

/// The same for every pixel of the image, after the state tests.
template <class MattesOf>
Status keyEachSpan(const ImageEngine& engine, bool keep, bool invert, MattesOf&& mattesOf) {
    return forEachSpan(engine,
                       [&](Pixel* first, Pixel* last) { keySpan(first, last, keep, invert, mattesOf); });
}

}  // namespace krl
