#include "kernels/colour/HsvLanes.h"

#include "core/VectorLevels.h"
#include "kernels/colour/HueLane.h"

namespace krl {

// The equation is `rgbToHsv`.
KRL_VECTOR_LEVELS void toHsv(const ColourLanes& colours, HsvLanes& hsv) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const HueLane lane = hueLane(colours.red[i], colours.green[i], colours.blue[i]);
        hsv.value[i] = lane.value;
        hsv.saturation[i] = lane.spread / (lane.value == 0.0f ? 1.0f : lane.value);
        hsv.turn[i] = lane.hue / 60.0f;
    }
}

namespace {

/// A channel on 0..1 as a byte, rounded by `half`; NaN gives 0.
int32_t channelByte(float channel, double half) {
    const double level = channel * 255.0 + half;
    return static_cast<int32_t>(level > 0.0 ? level : 0.0);
}

}  // namespace

// The equation is `hsvToRgb`. Each sector takes its three channels from the same three levels.
KRL_VECTOR_LEVELS void fromHsv(const HsvLanes& hsv, ColourLanes& colours, double half) {
    int32_t sectors[kBatchPixels], high[kBatchPixels], middle[kBatchPixels], low[kBatchPixels];
    float slopes[kBatchPixels];
    // In odd sectors one channel falls with the hue's fraction, in even ones one rises with it.
    for (size_t i = 0; i < kBatchPixels; ++i) sectors[i] = static_cast<int32_t>(hsv.turn[i]);
    for (size_t i = 0; i < kBatchPixels; ++i) slopes[i] = hsv.turn[i] - float(sectors[i]);
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const double value = hsv.value[i], saturation = hsv.saturation[i], fraction = slopes[i];
        const double rest = 1.0 - fraction;
        const double slope = (sectors[i] & 1) != 0 ? fraction : rest;
        high[i] = channelByte(hsv.value[i], half);
        middle[i] = channelByte(static_cast<float>(value * (1.0 - saturation * slope)), half);
        low[i] = channelByte(static_cast<float>(value * (1.0 - saturation)), half);
    }
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const int32_t s = sectors[i], top = high[i], mid = middle[i], bottom = low[i];
        const auto choose = [=](bool isHigh, bool isMiddle) {
            const int32_t other = isMiddle ? mid : bottom;
            return isHigh ? top : other;
        };
        colours.red[i] = choose((s == 0) | (s == 5), (s == 1) | (s == 4));
        colours.green[i] = choose((s == 1) | (s == 2), (s == 0) | (s == 3));
        colours.blue[i] = choose((s == 3) | (s == 4), (s == 2) | (s == 5));
    }
}

}  // namespace krl
