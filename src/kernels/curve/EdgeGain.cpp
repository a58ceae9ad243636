#include "kernels/curve/EdgeGain.h"

#include <algorithm>
#include <cmath>

namespace krl {

namespace {

bool isExact(const WholeGain& gain, double amount) {
    for (int32_t edge = -255; edge <= 255; ++edge)
        if (gain.move(edge) != std::floor(edge * amount)) return false;
    return true;
}

}  // namespace

std::optional<WholeGain> wholeGain(float amount) {
    // Of smaller amounts not every sum is exact in a double, and larger ones leave no bits for a fraction.
    constexpr float kSmallest = 0x1p-20f, kLargest = 0x1p+20f;
    if (amount == 0) return WholeGain{0, 0};
    const float size = std::fabs(amount);
    if (!(size >= kSmallest && size <= kLargest)) return std::nullopt;
    const int shift = std::min(22 - std::ilogb(amount), 31);
    const double scaled = std::ldexp(double(amount), shift);
    // One side serves amounts just beyond a short fraction, the other those just below.
    for (double rounded : {std::floor(scaled), std::ceil(scaled)}) {
        const WholeGain gain{static_cast<int32_t>(rounded), shift};
        if (isExact(gain, amount)) return gain;
    }
    return std::nullopt;
}

}  // namespace krl
