#include "blur/EdgeGain.h"

#include <algorithm>
#include <cmath>

namespace krl {

std::optional<WholeGain> wholeGain(float amount) {
    // Of smaller amounts not every sum is exact in a double, and larger ones leave no bits for a fraction.
    constexpr float kSmallest = 0x1p-20f, kLargest = 0x1p+20f;
    if (amount == 0) return WholeGain{0, 0};
    const float size = std::fabs(amount);
    if (!(size >= kSmallest && size <= kLargest)) return std::nullopt;
    const int shift = std::min(22 - std::ilogb(amount), 31);
    // Away from 0, as amounts just beyond a short fraction are common, and none falls short of one.
    const auto multiplier = static_cast<int32_t>(std::ceil(std::ldexp(double(size), shift)));
    const WholeGain gain{amount < 0 ? -multiplier : multiplier, shift};
    for (int32_t edge = -255; edge <= 255; ++edge)
        if (gain.move(edge) != std::floor(edge * double(amount))) return std::nullopt;
    return gain;
}

}  // namespace krl
