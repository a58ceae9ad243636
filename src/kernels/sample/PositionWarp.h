#pragma once

#include <algorithm>
#include <utility>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "kernels/sample/Sampler.h"

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

/// Lines whose batches are made one below the other before the next to the right: what a turned batch reads
/// across many rows is still in the cache for the batch below it.
inline constexpr int32_t kLinesAtOnce = 32;

/// A warp line by line, banded by lines: `make(line, PositionBatch&, firstColumn, put)` fills the batch, for
/// as many columns as it counts, and calls `put(y)` for the row that comes from there; it may do so for
/// several rows. A pixel that comes from its own place stays as it is.
template <class Make>
Status warpByLine(const ImageEngine& engine, SampleQuality quality, ChannelTarget target, int32_t lineCount,
                  Make&& make) {
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy source(image);
    return withSampler(source.view(), quality, target, [&](const auto& sampler) {
        return forEachLineRange(engine, lineCount, [&](IndexRange lines) {
            PositionBatch batch;
            for (int32_t top = lines.first; top < lines.last; top += kLinesAtOnce)
                forEachBatch(static_cast<size_t>(image.width), [&](size_t first, size_t count) {
                    const auto put = [&](int32_t y) {
                        sampler.sample(image.row(y) + first, batch.y, batch.x, batch.count);
                    };
                    engine.throwIfCancelled();
                    for (int32_t line = top; line < std::min(top + kLinesAtOnce, lines.last); ++line) {
                        batch.count = count;
                        make(line, batch, static_cast<int32_t>(first), put);
                    }
                });
        });
    });
}

/// A warp whose pixels come from where `positions(y, firstColumn, PositionBatch&)` says, after the state
/// tests.
template <class Positions>
Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      Positions&& positions) {
    if (Status state = engine.imageStatus()) return state;
    return warpByLine(engine, quality, target, engine.buffer()->height,
                      [&](int32_t y, PositionBatch& batch, int32_t firstColumn, auto&& put) {
                          positions(y, firstColumn, batch);
                          put(y);
                      });
}

}  // namespace krl
