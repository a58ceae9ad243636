#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/Bands.h"

namespace krl {

/// The bytes of a pixel word that stay as they were when a fresh word is merged in: alpha for `RGB`,
/// colour for anything but `RGB` and `RGBA`.
constexpr uint32_t keptBytes(ChannelTarget target) {
    return target == ChannelTarget::RGBA ? 0u : target == ChannelTarget::RGB ? 0xFF000000u : 0x00FFFFFFu;
}

/// Writes `count` fresh words over `words`, but for the bits under `kept`.
inline void mergeWords(uint8_t* words, const uint8_t* fresh, int32_t count, uint32_t kept) {
    if (kept == 0) {
        std::memcpy(words, fresh, static_cast<size_t>(count) * 4);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        uint32_t old, given;
        std::memcpy(&old, words + i * 4, 4);
        std::memcpy(&given, fresh + i * 4, 4);
        old = (old & kept) | (given & ~kept);
        std::memcpy(words + i * 4, &old, 4);
    }
}

/// Rewrites the bytes of `target` in the loaded picture, in bands, from those at the same place of
/// `other`: `mix(bytes, beside, out, count)` makes `count` new bytes of every channel, of which those
/// of the target are kept.
template <class Mix>
Status mixBytes(const ImageEngine& engine, const Pixel* other, ChannelTarget target, Mix&& mix) {
    constexpr ptrdiff_t kBlockPixels = 256;
    const uint32_t kept = keptBytes(target);
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        const Pixel* beside = other + (first - engine.buffer()->row(0));
        uint8_t fresh[kBlockPixels * 4];
        while (first != last) {
            const auto count = static_cast<int32_t>(std::min(kBlockPixels, last - first));
            auto* bytes = reinterpret_cast<uint8_t*>(first);
            mix(bytes, reinterpret_cast<const uint8_t*>(beside), fresh, count * 4);
            mergeWords(bytes, fresh, count, kept);
            first += count;
            beside += count;
        }
    });
}

}  // namespace krl
