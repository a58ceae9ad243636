#pragma once

#include <cstdint>

#include "core/SpanTaker.h"
#include "krlimage/pixel.h"

namespace krl {

/// A curve and the channels that go through it: bit 0 blue to bit 3 alpha.
struct ChannelCurve {
    const ByteCurve& curve;
    uint32_t channels;
};

/// Sends the channels of each curve through it, many pixels at once where the processor has the instructions.
/// Returns the first pixel that is left for the plain loop, which is `first` where it has none.
Pixel* lookUpWide(Pixel* first, Pixel* last, const ChannelCurve (&curves)[1]);
Pixel* lookUpWide(Pixel* first, Pixel* last, const ChannelCurve (&curves)[3]);

}  // namespace krl
