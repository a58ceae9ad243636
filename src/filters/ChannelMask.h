#pragma once

#include <bit>
#include <cstdint>

#include "core/Pixel.h"

namespace krl {

/// The bytes of a pixel that an effect writes. Filters compute all four bytes of a pixel at once,
/// which costs a vector nothing, and keep those that were asked for.
class ChannelMask {
public:
    /// Four bytes for `RGBA`, the colour bytes for `RGB`, alpha for anything else.
    explicit constexpr ChannelMask(ChannelTarget target)
        : word_(std::bit_cast<uint32_t>(target == ChannelTarget::RGBA  ? Pixel{255, 255, 255, 255}
                                        : target == ChannelTarget::RGB ? Pixel{255, 255, 255, 0}
                                                                       : Pixel{0, 0, 0, 255})) {}

    /// The chosen bytes of `fresh`, the others of `old`.
    constexpr Pixel merge(Pixel old, Pixel fresh) const {
        const uint32_t kept = std::bit_cast<uint32_t>(old) & ~word_;
        return std::bit_cast<Pixel>(kept | (std::bit_cast<uint32_t>(fresh) & word_));
    }

    /// Merges runs of pixels into `target`, which may be either.
    void combine(const Pixel* old, const Pixel* fresh, int32_t count, Pixel* target) const {
        for (int32_t i = 0; i < count; ++i) target[i] = merge(old[i], fresh[i]);
    }
    /// Merges a run of pixels into `target`.
    void write(Pixel* target, const Pixel* fresh, int32_t count) const {
        for (int32_t i = 0; i < count; ++i) target[i] = merge(target[i], fresh[i]);
    }

private:
    uint32_t word_;
};

}  // namespace krl
