#include "kernels/sample/PositionWarp.h"

#include <algorithm>
#include <functional>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/sample/Sampler.h"

namespace krl {

namespace {

/// Lines whose batches are made one below the other before the next to the right: what a turned batch reads
/// across many rows is still in the cache for the batch below it.
constexpr int32_t kLinesAtOnce = 32;

}  // namespace

KRL_VECTOR_LEVELS void holdInside(float* places, size_t count, int32_t length) {
    for (size_t i = 0; i < count; ++i) places[i] = heldInside(places[i], length);
}

Status warpByLine(const ImageEngine& engine, SampleQuality quality, ChannelTarget target, int32_t lineCount,
                  const MakeLine& make) {
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy source(image);
    return withSampler(source.view(), quality, target, [&](const auto& sampler) {
        return forEachLineRange(engine, lineCount, [&](IndexRange lines) {
            PositionBatch batch;
            for (int32_t top = lines.first; top < lines.last; top += kLinesAtOnce)
                forEachBatch(static_cast<size_t>(image.width), [&](size_t first, size_t count) {
                    const auto putRow = [&](int32_t y) {
                        sampler.sample(image.row(y) + first, batch.y, batch.x, batch.count);
                    };
                    const PutRow put = std::ref(putRow);
                    engine.throwIfCancelled();
                    for (int32_t line = top; line < std::min(top + kLinesAtOnce, lines.last); ++line) {
                        batch.count = count;
                        make(line, batch, static_cast<int32_t>(first), put);
                    }
                });
        });
    });
}

Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      const FindPositions& positions) {
    if (Status state = engine.imageStatus()) return state;
    return warpByLine(engine, quality, target, engine.buffer()->height,
                      [&](int32_t y, PositionBatch& batch, int32_t first, const PutRow& put) {
                          positions(y, first, batch);
                          put(y);
                      });
}

}  // namespace krl
