#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "krlimage/pixel.h"
#include "krlimage/status.h"

namespace krl {

/// What each byte becomes.
using ByteCurve = std::array<uint8_t, 256>;

/// The curves of a pixel's bytes by channel number; null for a byte that stays.
using ChannelCurves = std::array<const ByteCurve*, 4>;

/// What a pass does to the pixels from `first` up to `last`.
using SpanWork = std::function<void(Pixel* first, Pixel* last)>;

/// Takes over what passes do to every pixel alone, to run several of them together.
class SpanTaker {
public:
    /// Runs `work` on all pixels before it returns, or where it is nothing but `curves`, what comes to the
    /// same.
    virtual Status take(const SpanWork& work, const ChannelCurves* curves) = 0;

protected:
    ~SpanTaker() = default;
};

}  // namespace krl
