#pragma once

#include <algorithm>
#include <utility>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "warp/Sampler.h"

namespace krl {

/// Where each pixel of a run comes from.
struct PositionRun {
    size_t count = 0;  ///< made 0 by who leaves all of them as they are
    float x[kRunPixels];
    float y[kRunPixels];
};

/// Calls `work(firstColumn, count)` for the runs of `width` columns.
template <class Work>
void forEachRun(int32_t width, Work&& work) {
    for (int32_t first = 0; first < width; first += static_cast<int32_t>(kRunPixels))
        work(first, std::min(kRunPixels, static_cast<size_t>(width - first)));
}

/// A coordinate held in a line of `length` pixels.
inline float heldInside(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    return place < 0.0f ? 0.0f : place >= end ? end - 1.0f : place;
}

/// The warp whose pixels come from where `positions(y, firstColumn, PositionRun&)` says, banded by rows. A
/// pixel that comes from its own place stays as it is.
template <class Positions>
Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      Positions&& positions) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy source(image);
    return withSampler(source.view(), quality, target, [&](const auto& sampler) {
        return forEachRow(engine, [&](Pixel* row, int32_t y) {
            PositionRun run;
            forEachRun(image.width, [&](int32_t firstColumn, size_t count) {
                run.count = count;
                positions(y, firstColumn, run);
                sampler.run(row + firstColumn, run.y, run.x, run.count);
            });
        });
    });
}

}  // namespace krl
