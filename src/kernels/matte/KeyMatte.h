#pragma once

#include <algorithm>
#include <array>

#include "core/Bands.h"

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

/// Folds `matteOf(const Pixel&)` into the alpha of every pixel, after the state tests.
template <class MatteOf>
Status keyEachPixel(const ImageEngine& engine, bool keep, bool invert, MatteOf&& matteOf) {
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        for (Pixel* p = first; p != last; ++p)
            p->alpha = applyKeyMatte(p->alpha, matteOf(std::as_const(*p)), keep, invert);
    });
}

/// Pixels whose mattes are made at once: few enough that they stay in the nearest cache.
inline constexpr ptrdiff_t kMatteBatch = 128;

/// Folds `count` mattes into the alpha of the pixels beside them.
void foldMattes(Pixel* pixels, const uint8_t* mattes, ptrdiff_t count, bool keep, bool invert);

/// Folds the mattes of many pixels that are made together, in runs:
/// `mattesOf(const Pixel* pixels, ptrdiff_t count, uint8_t* mattes)` writes `count` mattes, at most
/// `kMatteBatch`.
template <class MattesOf>
void keySpans(Pixel* first, Pixel* last, bool keep, bool invert, MattesOf&& mattesOf) {
    std::array<uint8_t, kMatteBatch> mattes;
    for (Pixel* run = first; run != last;) {
        const ptrdiff_t count = std::min(kMatteBatch, last - run);
        mattesOf(static_cast<const Pixel*>(run), count, mattes.data());
        foldMattes(run, mattes.data(), count, keep, invert);
        run += count;
    }
}

/// The same for every pixel of the image, after the state tests.
template <class MattesOf>
Status keyEachSpan(const ImageEngine& engine, bool keep, bool invert, MattesOf&& mattesOf) {
    return forEachSpan(engine,
                       [&](Pixel* first, Pixel* last) { keySpans(first, last, keep, invert, mattesOf); });
}

}  // namespace krl
