#pragma once

#include <algorithm>
#include <utility>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "kernels/sample/Sampler.h"

namespace krl {

/// Where each pixel of a run comes from.
struct PositionSpan {
    size_t count = 0;
    float x[kSampleBatch];
    float y[kSampleBatch];
};

/// Calls `work(firstColumn, count)` for the runs of `width` columns.
template <class Work>
void forEachPiece(int32_t width, Work&& work) {
    for (int32_t first = 0; first < width; first += static_cast<int32_t>(kSampleBatch))
        work(first, std::min(kSampleBatch, static_cast<size_t>(width - first)));
}

/// A coordinate held in a line of `length` pixels.
inline float heldInside(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    return place < 0.0f ? 0.0f : place >= end ? end - 1.0f : place;
}

/// The same for `count` coordinates.
void holdInside(float* places, size_t count, int32_t length);

/// Lines whose runs are made one below the other before the next to the right: what a turned run reads
/// across many rows is still at hand for the run below it.
inline constexpr int32_t kLinesAtOnce = 32;

/// The warp that is made line by line, banded by lines: `make(line, PositionSpan&, firstColumn, put)` fills
/// the run, for as many columns as it counts, and calls `put(y)` for the row that comes from there; it may do
/// so for several rows. A pixel that comes from its own place stays as it is.
template <class Make>
Status warpByLine(const ImageEngine& engine, SampleQuality quality, ChannelTarget target, int32_t lineCount,
                  Make&& make) {
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy source(image);
    return withSampler(source.view(), quality, target, [&](const auto& sampler) {
        return forEachLineRange(engine, lineCount, [&](IndexRange lines) {
            PositionSpan run;
            for (int32_t top = lines.first; top < lines.last; top += kLinesAtOnce)
                forEachPiece(image.width, [&](int32_t firstColumn, size_t count) {
                    const auto put = [&](int32_t y) {
                        sampler.run(image.row(y) + firstColumn, run.y, run.x, run.count);
                    };
                    for (int32_t line = top; line < std::min(top + kLinesAtOnce, lines.last); ++line) {
                        run.count = count;
                        make(line, run, firstColumn, put);
                    }
                });
        });
    });
}

/// The warp whose pixels come from where `positions(y, firstColumn, PositionSpan&)` says, after the state
/// tests.
template <class Positions>
Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      Positions&& positions) {
    if (Status state = engine.imageStatus()) return state;
    return warpByLine(engine, quality, target, engine.buffer()->height,
                      [&](int32_t y, PositionSpan& run, int32_t firstColumn, auto&& put) {
                          positions(y, firstColumn, run);
                          put(y);
                      });
}

}  // namespace krl
