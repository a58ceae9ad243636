#pragma once

#include <utility>

#include "core/Bands.h"

namespace krl {

/// Gives each byte of `target` in the loaded picture the value `mix(byte, beside)`, where `beside` is
/// the byte at the same place of `other`; alpha alone for any target but `RGBA` and `RGB`.
template <class Mix>
Status mixBytes(const ImageEngine& engine, const Pixel* other, ChannelTarget target, Mix&& mix) {
    const auto mixChannels = [&]<size_t... channel>(std::index_sequence<channel...>) {
        return forEachPixelPair(engine, other, [&](Pixel& p, const Pixel& beside) {
            ((p[channel] = mix(p[channel], beside[channel])), ...);
        });
    };
    switch (target) {
        case ChannelTarget::RGBA:
            return mixChannels(std::index_sequence<0, 1, 2, 3>{});
        case ChannelTarget::RGB:
            return mixChannels(std::index_sequence<0, 1, 2>{});
        default:
            return mixChannels(std::index_sequence<3>{});
    }
}

}  // namespace krl
