#pragma once

#include <cstdint>
#include <optional>

#include "core/Numbers.h"

namespace krl {

// How far a byte moves from its blur: a gain makes the new byte from the sharp one and its `edge`, the
// difference from the blurred one, -255 to 255.

/// Any gain, in real numbers.
struct RealGain {
    double amount;

    uint8_t operator()(int32_t sharp, int32_t edge) const { return truncatedByte(sharp + edge * amount); }
};

/// A gain in whole numbers.
struct WholeGain {
    int32_t multiplier;
    int shift;

    /// `floor(edge * amount)`, by which a whole number moves to the truncated sum, but for negative ones.
    int32_t move(int32_t edge) const { return (edge * multiplier) >> shift; }
    uint8_t operator()(int32_t sharp, int32_t edge) const { return clampByte(sharp + move(edge)); }
};

/// The gain of `amount` in whole numbers, where there is one that is exact for every edge; 23 bits of the
/// amount are, as good as always.
std::optional<WholeGain> wholeGain(float amount);

/// What `work(gain)` returns of the gain that is `amount`.
template <class Work>
auto withGain(float amount, Work&& work) {
    const std::optional<WholeGain> whole = wholeGain(amount);
    return whole ? work(*whole) : work(RealGain{amount});
}

}  // namespace krl
