#pragma once

#include <algorithm>
#include <utility>

#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "warp/Sampler.h"

namespace krl {

/// Pixels of a row whose places are worked out together.
inline constexpr size_t kRunPixels = 256;

/// Where each pixel of a run comes from.
struct PositionRun {
    size_t count = 0;
    float x[kRunPixels];
    float y[kRunPixels];
};

/// The place of a pixel that is to stay as it is.
inline constexpr float kStays = -3.0e38f;

/// A coordinate held in a line of `length` pixels.
inline float heldInside(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    return place < 0.0f ? 0.0f : place >= end ? end - 1.0f : place;
}

/// The warp whose pixels come from where `positions(y, firstColumn, PositionRun&)` says, banded by rows.
template <class Positions>
Status warpByPosition(const ImageEngine& engine, SampleQuality quality, ChannelTarget target,
                      Positions&& positions) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ImageCopy source(image);
    return withSampler(source.view(), quality, target, [&](const auto& sampler) {
        return forEachRow(engine, [&](Pixel* row, int32_t y) {
            PositionRun run;
            for (int32_t first = 0; first < image.width; first += static_cast<int32_t>(kRunPixels)) {
                run.count = std::min(kRunPixels, static_cast<size_t>(image.width - first));
                positions(y, first, run);
                for (size_t i = 0; i < run.count; ++i)
                    if (run.x[i] != kStays) sampler(row[first + static_cast<int32_t>(i)], run.y[i], run.x[i]);
            }
        });
    });
}

}  // namespace krl
