#pragma once

#include <cstring>

#include "krlimage/pixel.h"

/// A pixel as one 32-bit word: blue in the low byte, alpha in the high one. Loops that
/// access pixels this way can be vectorised.
namespace krl {

inline uint32_t wordOf(const Pixel& p) {
    uint32_t word;
    std::memcpy(&word, &p, sizeof word);
    return word;
}

inline void storeWord(Pixel& p, uint32_t word) { std::memcpy(&p, &word, sizeof word); }

/// The byte of `word` at bit `shift`.
constexpr int32_t byteAt(uint32_t word, uint32_t shift) { return static_cast<int32_t>(word >> shift & 255); }

}  // namespace krl
