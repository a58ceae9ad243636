#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/SpanTaker.h"
#include "krlimage/pixel.h"

namespace krl {

/// Curves that are arithmetic: each byte is complemented or not, gains a step and stops at 255, loses another and stops
/// at 0. Brightness, inversion, black and white are of this kind, and need no looking up.
class SaturatedSteps {
public:
    /// What `curves` do, if all of them are such steps; a channel without a curve stays.
    static std::optional<SaturatedSteps> of(const ChannelCurves& curves);

    void apply(Pixel* first, Pixel* last) const;

    /// The steps of some adjacent bytes, by the channel of each.
    struct Lanes {
        static constexpr size_t kBytes = 32;

        uint8_t flips[kBytes], counterFlips[kBytes], gains[kBytes], losses[kBytes];
    };

private:
    Lanes lanes_;
};

}  // namespace krl
