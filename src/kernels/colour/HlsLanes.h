#pragma once

#include "kernels/colour/ColourLanes.h"

namespace krl {

/// Hue, lightness and saturation of a batch of pixels, each 0..360; the hue of a grey is -1.
struct HlsLanes {
    int32_t hue[kBatchPixels], lightness[kBatchPixels], saturation[kBatchPixels];
};

/// The same numbers as `rgbToHls` gives for each pixel, without a branch.
void toHls(const ColourLanes& colours, HlsLanes& hls);

/// Hues that `fromHls` takes lie within plus and minus this many degrees.
inline constexpr int32_t kWidestHue = 1000;

/// What `hlsToRgb` makes of each pixel, without a branch: a grey that was given a hue keeps the
/// colour that `colours` holds.
void fromHls(const HlsLanes& hls, ColourLanes& colours);

}  // namespace krl
