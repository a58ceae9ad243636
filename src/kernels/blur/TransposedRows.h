#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/blur/TentWindow.h"

/// Rows stored column by column, `kTransposedLanes` bytes each, so that the windows of all rows move along
/// them in vectors. An element is a pixel, of four lanes, or a byte.
namespace krl::tent {

/// Rows that are transposed together if an element has so many bytes.
constexpr int32_t transposedRows(int32_t elementBytes) { return kTransposedLanes / elementBytes; }

/// Stores `rowCount` rows of `width` elements, one after the other, as columns. If there are fewer than
/// `transposedRows`, the last is repeated.
template <int32_t elementBytes>
void transpose(const uint8_t* rows, int32_t rowCount, int32_t width, uint8_t* columns);

/// Writes the first `count` of such columns as the beginnings of `rowCount` rows of `width` elements.
template <int32_t elementBytes>
void transposeBack(const uint8_t* columns, int32_t count, uint8_t* rows, int32_t rowCount, int32_t width);

/// Byte `channel` of each of `count` words.
void gatherChannel(const uint8_t* words, int32_t channel, ptrdiff_t count, uint8_t* bytes);

}  // namespace krl::tent
