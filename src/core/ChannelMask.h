#pragma once

#include <cstring>

#include "core/PixelWord.h"

namespace krl {

/// The bytes of a pixel that an effect writes. Vectorised loops compute all four bytes of a pixel at no extra
/// cost and keep the selected ones.
class ChannelMask {
public:
    /// Four bytes for `RGBA`, the colour bytes for `RGB`, alpha for anything else.
    explicit constexpr ChannelMask(ChannelTarget target)
        : ChannelMask(target == ChannelTarget::RGBA  ? 0xFFFFFFFFu
                      : target == ChannelTarget::RGB ? 0x00FFFFFFu
                                                     : 0xFF000000u) {}
    /// The bytes of a pixel's word that are set in `word`.
    explicit constexpr ChannelMask(uint32_t word) : word_(word) {}

    constexpr bool isWhole() const { return word_ == 0xFFFFFFFFu; }

    /// The selected bytes of `fresh` and the other bytes of `old`.
    constexpr uint32_t merge(uint32_t old, uint32_t fresh) const { return (old & ~word_) | (fresh & word_); }
    Pixel merge(Pixel old, Pixel fresh) const {
        storeWord(old, merge(wordOf(old), wordOf(fresh)));
        return old;
    }

    /// Merges two spans into `target`, which may be either of them.
    void combine(const Pixel* old, const Pixel* fresh, int32_t count, Pixel* target) const {
        for (int32_t i = 0; i < count; ++i) storeWord(target[i], merge(wordOf(old[i]), wordOf(fresh[i])));
    }
    /// Merges a span into `target`, which must not overlap it.
    void write(Pixel* target, const Pixel* fresh, int32_t count) const {
        if (isWhole())
            std::memcpy(target, fresh, static_cast<size_t>(count) * sizeof(Pixel));
        else
            combine(target, fresh, count, target);
    }

private:
    uint32_t word_;
};

}  // namespace krl
