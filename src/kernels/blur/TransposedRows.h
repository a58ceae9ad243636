#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/blur/TentWindow.h"

/// Strips of rows turned on their side: what stands in one column lies next to each other, so that the
/// windows of all rows move along them in vectors. An element is a pixel, of four lanes, or a byte.
namespace krl::tent {

/// Rows of a strip whose elements are so many bytes.
constexpr int32_t stripRows(int32_t elementBytes) { return kStripLanes / elementBytes; }

/// Lays `rowCount` rows of `width` elements, one after the other, into `strip`. Fewer rows than it has room
/// for repeat the last.
template <int32_t elementBytes>
void layOnSide(const uint8_t* rows, int32_t rowCount, int32_t width, uint8_t* strip);

/// Writes the first `count` columns of `strip` as the beginnings of `rowCount` rows of `width` elements.
template <int32_t elementBytes>
void setUpright(const uint8_t* strip, int32_t count, uint8_t* rows, int32_t rowCount, int32_t width);

/// Byte `channel` of each of `count` words.
void gatherChannel(const uint8_t* words, int32_t channel, ptrdiff_t count, uint8_t* bytes);

}  // namespace krl::tent
