#pragma once

#include <cstddef>
#include <cstdint>

#include "core/Batch.h"
#include "krlimage/pixel.h"

/// Sampling of a batch of places, at most `kBatchPixels` at once; the bilinear one in whole numbers.
///
/// From 1 upward a float's fraction is a whole number of 2^-23, and so is every weight of a place there, and
/// of many below. A blend of two bytes, `a + floor(weight * (b - a))`, then fits 32 bits and is exact, and
/// equals the truncated blend in floating point.
namespace krl {

/// Places of a batch along one axis.
struct AxisBatch {
    int32_t whole[kBatchPixels];     ///< below the axis's last index
    int32_t fraction[kBatchPixels];  ///< in units of 2^-23, up to a whole
    int32_t doubt[kBatchPixels];     ///< 0 where the two above are the place exactly
};

/// Whether an axis whose last index is `last` has two neighbours, and indices that a float holds.
bool canSplitPlaces(int32_t last);
/// Splits `count` places on such an axis. One outside it is taken as 0; that and one too fine below 1 are in
/// doubt. Whether any is.
bool splitPlaces(const float* places, size_t count, int32_t last, AxisBatch& axis);

/// The pixels that the places truncate to, those outside (and NaN) being held in the picture; `stride` is
/// pixels from row to row.
void nearestPixels(const Pixel* source, int32_t stride, const float* y, const float* x, size_t count,
                   int32_t bottom, int32_t right, Pixel* out);
/// The blends of four pixels at each place of `columns` and `rows`.
void blendSquares(const Pixel* source, int32_t stride, const AxisBatch& rows, const AxisBatch& columns,
                  size_t count, Pixel* out);
/// The blends of two neighbours in a row at each place of `columns`.
void blendAlongRow(const Pixel* row, const AxisBatch& columns, size_t count, Pixel* out);
/// The blends of two neighbours in column `i` of `source` at each place `i` of `rows`.
void blendDownColumns(const Pixel* source, int32_t stride, const AxisBatch& rows, size_t count, Pixel* out);

}  // namespace krl
