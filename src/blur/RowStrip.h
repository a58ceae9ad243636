#pragma once

#include <cstdint>

#include "blur/TentWindow.h"

/// A strip of `tent::kStripRows` rows turned on its side: the pixels of a column lie next to each other, so
/// that the windows of all rows move along them in vectors.
namespace krl::tent {

/// Lays `rowCount` rows of `width` pixels, one after the other, into `strip`. Fewer rows than it has room
/// for repeat the last.
void layOnSide(const uint8_t* rows, int32_t rowCount, int32_t width, uint8_t* strip);

/// Writes the first `count` columns of `strip` as the beginnings of `rowCount` rows of `width` pixels.
void setUpright(const uint8_t* strip, int32_t count, uint8_t* rows, int32_t rowCount, int32_t width);

}  // namespace krl::tent
