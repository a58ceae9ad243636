#pragma once

#include <algorithm>

#include "krlimage/key.h"

namespace krl {

/// The number of a colour's byte in a pixel.
constexpr size_t channelNumber(KeyColour colour) {
    return colour == KeyColour::Red ? 2 : colour == KeyColour::Green ? 1 : 0;
}

inline uint8_t largestChannel(const Pixel& p) { return std::max(std::max(p.blue, p.green), p.red); }

}  // namespace krl
