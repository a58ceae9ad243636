#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "core/Batch.h"
#include "krlimage/engine.h"
#include "krlimage/options.h"

namespace krl {

/// Where each pixel of a batch comes from.
struct PositionBatch {
    size_t count = 0;
    float x[kBatchPixels];
    float y[kBatchPixels];
};

/// A coordinate held in a line of `length` pixels.
inline float heldInside(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    return place < 0.0f ? 0.0f : place >= end ? end - 1.0f : place;
}

/// The same for `count` coordinates.
void holdInside(float* places, size_t count, int32_t length);

/// Fills a row of the picture from where a batch says.
using PutRow = std::function<void(int32_t y)>;
/// Fills the batch of a line from column `first` on, for as many columns as it counts, and calls `put(y)` for
/// the row that comes from there; it may do so for several rows.
using MakeLine = std::function<void(int32_t line, PositionBatch& batch, int32_t first, const PutRow& put)>;

/// A warp line by line, banded by lines. A pixel that comes from its own place stays as it is.
Status warpByLine(const ImageEngine& engine, SampleQuality quality, ChannelTarget target, int32_t lineCount,
                  const MakeLine& make);

/// Where the pixels of row `y` from column `first` on come from, for as many as the batch counts.
using FindPositions = std::function<void(int32_t y, int32_t first, PositionBatch& batch)>;

/// A warp row by row, after the state tests.
Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      const FindPositions& positions);

}  // namespace krl
