#pragma once

#include <cstdint>
#include <optional>

#include "core/Numbers.h"

namespace krl {

// A gain makes a new byte from an old one and its `edge`, the difference from another byte, -255 to 255:
// out = byte + edge * amount, truncated and limited. `RealGain` is that equation; `WholeGain` gives the same
// bytes in whole numbers.

/// Any gain, in real numbers.
struct RealGain {
    double amount;

    uint8_t operator()(int32_t sharp, int32_t edge) const { return truncatedByte(sharp + edge * amount); }
};

/// A gain in whole numbers.
struct WholeGain {
    int32_t multiplier;
    int shift;

    /// `floor(edge * amount)`: added to a whole number it gives the truncated sum, except for negative sums.
    int32_t move(int32_t edge) const { return (edge * multiplier) >> shift; }
    uint8_t operator()(int32_t sharp, int32_t edge) const { return clampByte(sharp + move(edge)); }
};

/// The gain of `amount` in whole numbers, where one is exact for every edge; with 23 bits of the amount
/// nearly all are.
std::optional<WholeGain> wholeGain(float amount);

/// Returns `work(gain)` with the fastest gain of `amount`.
template <class Work>
auto withGain(float amount, Work&& work) {
    const std::optional<WholeGain> whole = wholeGain(amount);
    return whole ? work(*whole) : work(RealGain{amount});
}

}  // namespace krl
