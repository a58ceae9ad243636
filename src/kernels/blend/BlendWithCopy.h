#pragma once

#include <algorithm>
#include <cstdint>

#include "core/Bands.h"
#include "core/ChannelMask.h"

namespace krl {

/// Rewrites the bytes of `target` in the loaded picture, in bands, from those at the same place of
/// `other`: `mix(bytes, beside, out, count)` makes `count` new bytes of every channel, of which those
/// of the target are kept.
template <class Mix>
Status mixBytes(const ImageEngine& engine, const Pixel* other, ChannelTarget target, Mix&& mix) {
    constexpr ptrdiff_t kBlockPixels = 256;
    const ChannelMask mask(target);
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        const Pixel* beside = other + (first - engine.buffer()->row(0));
        Pixel fresh[kBlockPixels];
        while (first != last) {
            const auto count = static_cast<int32_t>(std::min(kBlockPixels, last - first));
            mix(firstByte(first), firstByte(beside), firstByte(fresh), count * 4);
            mask.write(first, fresh, count);
            first += count;
            beside += count;
        }
    });
}

}  // namespace krl
