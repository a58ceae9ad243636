#pragma once

#include "core/PixelWord.h"

namespace krl {

/// Sets the alpha of every pixel to `alphaOf(word)`, at most 255, and keeps its colours. Part of its caller,
/// so that the loop is compiled for the caller's vector levels.
template <class AlphaOf>
[[gnu::always_inline]] inline void changeAlpha(Pixel* first, Pixel* last, AlphaOf alphaOf) {
    for (Pixel* p = first; p != last; ++p) {
        const uint32_t word = wordOf(*p);
        storeWord(*p, (word & 0xFFFFFF) | alphaOf(word) << 24);
    }
}

/// The sum of the three colours of a pixel.
constexpr uint32_t colourSum(uint32_t word) { return (word >> 16 & 255) + (word >> 8 & 255) + (word & 255); }

}  // namespace krl
