#pragma once

#include <cstddef>

#include "krlimage/key.h"

namespace krl {

/// Writes how far the key channel of each of `count` pixels exceeds the larger of the other
/// two; negative where it does not.
void differencesOf(const Pixel* pixels, size_t count, KeyColour colour, int16_t* differences);

/// Writes the distance between the largest and the smallest channel of each of `count` pixels.
void chromasOf(const Pixel* pixels, size_t count, uint8_t* chromas);

}  // namespace krl
