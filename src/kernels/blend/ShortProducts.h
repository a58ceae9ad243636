#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace krl {

/// Two bytes that a blend multiplies.
struct BytePair {
    uint8_t front, behind;
};

/// The pairs whose product is a whole number of 255ths and whose entry in the tables is nevertheless one
/// less: the floating-point steps of multiply and overlay end just below it.
inline constexpr std::array<BytePair, 12> kShortProducts{{
    {147, 85},
    {147, 170},
    {155, 51},
    {155, 102},
    {155, 153},
    {155, 204},
    {171, 85},
    {171, 170},
    {187, 75},
    {187, 150},
    {187, 165},
    {195, 153},
}};

constexpr bool isShortProduct(uint8_t front, uint8_t behind) {
    bool found = false;
    for (const BytePair& pair : kShortProducts) found |= (front == pair.front) & (behind == pair.behind);
    return found;
}

}  // namespace krl
