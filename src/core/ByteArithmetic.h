#pragma once

#include <cstdint>

/// Closed forms of some lookup tables, for vectorised loops, where computing is faster than looking up.
namespace krl {

/// `x / 255` for an `x` from 0 up to 65279, in the width of the type.
template <class Integer>
constexpr Integer dividedBy255(Integer x) {
    return static_cast<Integer>(static_cast<Integer>(x + 1 + (x >> 8)) >> 8);
}

/// `scaleByte[a][b]`.
constexpr uint8_t scaledByte(uint8_t a, uint8_t b) {
    return static_cast<uint8_t>(dividedBy255(static_cast<uint16_t>(a * b)));
}

/// `blendScreen[a][b]`.
constexpr uint8_t screenedByte(uint8_t a, uint8_t b) {
    return static_cast<uint8_t>(255 - dividedBy255(static_cast<uint16_t>((255 - a) * (255 - b) + 254)));
}

/// `blendSoftLight[front][behind]`: `behind * (255 * (2 * front + behind) - 2 * front * behind) / 65025`,
/// which is two divisions by 255, the first one of up to 24 bits.
constexpr uint8_t softLitByte(uint32_t front, uint32_t behind) {
    const uint32_t whole = behind * (510 * front + 255 * behind - 2 * front * behind);
    const uint32_t rounded = whole + 1 + (whole >> 8);
    return static_cast<uint8_t>(dividedBy255((whole + 1 + (rounded >> 8)) >> 8));
}

}  // namespace krl
