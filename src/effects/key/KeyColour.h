#pragma once

#include <algorithm>

#include "krlimage/pixel.h"

namespace krl {

/// The pure colour of a backing. `Auto` is only ever an argument: it is resolved before any pixel
/// is keyed.
enum class KeyColour : int32_t { Red = 21, Green = 22, Blue = 23, Auto = 81 };

/// The number of a colour's byte in a pixel.
constexpr size_t channelNumber(KeyColour colour) {
    return colour == KeyColour::Red ? 2 : colour == KeyColour::Green ? 1 : 0;
}

inline uint8_t largestChannel(const Pixel& p) { return std::max(std::max(p.blue, p.green), p.red); }

}  // namespace krl
