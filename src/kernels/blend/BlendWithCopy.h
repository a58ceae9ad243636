#pragma once

#include <cstdint>

#include "core/Bands.h"
#include "core/Batch.h"
#include "core/ChannelMask.h"

namespace krl {

/// Rewrites the bytes of `target` in the loaded picture, in bands, from those at the same place of
/// `other`: `mix(bytes, beside, out, count)` makes `count` new bytes of every channel, of which those
/// of the target are kept.
template <class Mix>
Status mixBytes(const ImageEngine& engine, const Pixel* other, ChannelTarget target, Mix&& mix) {
    const ChannelMask mask(target);
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const Pixel* beside = other + (first - engine.buffer()->row(0));
        Pixel fresh[kBatchPixels];
        forEachBatch(static_cast<size_t>(last - first), [&](size_t start, size_t size) {
            const auto count = static_cast<int32_t>(size);
            mix(firstByte(first + start), firstByte(beside + start), firstByte(fresh), count * 4);
            mask.write(first + start, fresh, count);
        });
    });
}

}  // namespace krl
