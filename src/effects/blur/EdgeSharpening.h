#pragma once

#include <cstdint>
#include <cstdlib>

namespace krl {

/// What a sharp and a blurred byte become together: the sharp one, moved by `gain` of their difference where
/// twice that reaches `threshold`.
template <class Gain>
uint8_t sharpened(int32_t sharp, int32_t blurred, const Gain& gain, int32_t threshold) {
    const int32_t difference = sharp - blurred;
    return gain(sharp, std::abs(2 * difference) < threshold ? 0 : difference);
}

}  // namespace krl
