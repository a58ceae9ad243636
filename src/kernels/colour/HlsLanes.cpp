#include "kernels/colour/HlsLanes.h"

#include <bit>

#include "core/VectorLevels.h"

namespace krl {

namespace {

/// Integer quotient, toward zero. Divisors are at most 510 and quotients small, so a quotient that is
/// no integer differs from the next one by far more than `float` rounds away.
int32_t quotient(float numerator, float divisor) { return static_cast<int32_t>(numerator / divisor); }

/// The least `float` that is not below 1 / `divisor`.
constexpr float reciprocalAbove(int32_t divisor) {
    const float nearest = 1.0f / static_cast<float>(divisor);
    const bool below = double(nearest) * divisor < 1.0;
    return below ? std::bit_cast<float>(std::bit_cast<uint32_t>(nearest) + 1) : nearest;
}

/// The same of a whole number below 2^21 in size by a constant, as a multiplication. With a factor that is
/// not below the reciprocal a product never rounds below an exact quotient, and quotients of up to 2^13 are
/// less than 2^13 * 2^-22 too large, which does not reach the next integer.
template <int32_t kDivisor>
int32_t quotient(float numerator) {
    static_assert(kDivisor <= 510);
    constexpr float kReciprocal = reciprocalAbove(kDivisor);
    return static_cast<int32_t>(numerator * kReciprocal);
}

}  // namespace

// The equation is `rgbToHls`. Of the three distances from the largest channel that decide a hue, its own is 0
// and that of the smallest 60, so only the middle channel needs a division.
KRL_VECTOR_LEVELS void toHls(const ColourLanes& colours, HlsLanes& hls) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const int32_t red = colours.red[i], green = colours.green[i], blue = colours.blue[i];
        const int32_t larger = red > green ? red : green, smaller = red < green ? red : green;
        const int32_t max = larger > blue ? larger : blue, min = smaller < blue ? smaller : blue;
        const int32_t sum = max + min, delta = max - min, middle = red + green + blue - sum;

        const int32_t lightness = quotient<510>(float(sum) * 360.0f + 255.0f);
        const int32_t divisor = lightness <= 180 ? sum : 510 - sum;
        hls.lightness[i] = lightness;
        const int32_t halfDivisor = divisor / 2, halfDelta = delta / 2;  // they round the quotients
        hls.saturation[i] =
            quotient(float(halfDivisor) + float(delta) * 360.0f, float(divisor == 0 ? 1 : divisor));

        const int32_t distance =
            quotient(float(halfDelta) + float(max - middle) * 60.0f, float(delta == 0 ? 1 : delta));
        const bool redLeads = red == max, greenLeads = green == max;
        const int32_t onward = greenLeads ? blue - red : red - green;
        const int32_t direction = redLeads ? green - blue : onward;
        const int32_t swing = direction < 0 ? distance - 60 : 60 - distance;
        const int32_t sector = redLeads ? 0 : greenLeads ? 120 : 240;
        const int32_t hue = sector + swing;
        const int32_t around = hue < 0 ? hue + 360 : hue;
        hls.hue[i] = delta == 0 ? -1 : around;
    }
}

namespace {

/// `hueToChannel` as a byte: between its two levels it rises over 60 degrees, stays up to 180 and falls until
/// 240.
int32_t channelAt(int32_t hue, float low, float spread) {
    const int32_t raised = hue < 0 ? hue + 360 : hue;
    const int32_t turned = raised > 360 ? raised - 360 : raised;
    const int32_t falling = turned < 240 ? 240 - turned : 0;
    const int32_t rising = turned < 60 ? turned : 60;
    const int32_t slope = rising < falling ? rising : falling;
    const float level = low + float(quotient<60>(spread * float(slope) + 30.0f));
    return quotient<360>(level * 255.0f + 180.0f);
}

}  // namespace

// The equation is `hlsToRgb`, with m1 as `low` and m2 - m1 as `spread`. Both branches are computed, and a
// mask selects one.
KRL_VECTOR_LEVELS void fromHls(const HlsLanes& hls, ColourLanes& colours) {
    ColourLanes coloured;
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const int32_t hue = hls.hue[i], lightness = hls.lightness[i], saturation = hls.saturation[i];
        const int32_t share = quotient<360>(float(lightness) * float(saturation) + 180.0f);
        const int32_t reach = lightness <= 180 ? share : saturation - share;
        const float low = float(lightness - reach), spread = float(2 * reach);
        coloured.red[i] = channelAt(hue + 120, low, spread);
        coloured.green[i] = channelAt(hue, low, spread);
        coloured.blue[i] = channelAt(hue - 120, low, spread);
    }
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const int32_t grey = quotient<360>(float(hls.lightness[i]) * 255.0f);
        // All ones where it holds, so that the choice stays one of bits.
        const int32_t isGrey = -int32_t{hls.saturation[i] == 0}, isUndefined = -int32_t{hls.hue[i] == -1};
        const auto choose = [=](int32_t own, int32_t other) {
            const int32_t kept = (grey & isUndefined) | (own & ~isUndefined);
            return (kept & isGrey) | (other & ~isGrey);
        };
        colours.red[i] = choose(colours.red[i], coloured.red[i]);
        colours.green[i] = choose(colours.green[i], coloured.green[i]);
        colours.blue[i] = choose(colours.blue[i], coloured.blue[i]);
    }
}

}  // namespace krl
