#pragma once

#include <cstdint>

/// The equation of `rgbToHsv` without a branch, so that loops over it become vectors.
namespace krl {

/// `level / 255` in single precision without the division: the head of 1 / 255 has so few bits that
/// its product is exact, and the tail's error is below the last rounding's.
inline float unitFromLevel(int32_t level) {
    constexpr float kHead = 0x1.01p-8f, kTail = static_cast<float>(1.0 / 255.0 - 0x1.01p-8);
    const auto whole = static_cast<float>(level);
    return whole * kHead + whole * kTail;
}

/// One colour's place in the hue space.
struct HueLane {
    float hue;     ///< degrees, 0..360; 0 for a grey
    float value;   ///< the largest channel on 0..1
    float spread;  ///< from the smallest to the largest; 0 for a grey
};

/// The numbers of `rgbToHsv` but for the hue of a grey.
inline HueLane hueLane(int32_t redLevel, int32_t greenLevel, int32_t blueLevel) {
    const auto larger = [](float a, float b) { return a > b ? a : b; };
    const auto smaller = [](float a, float b) { return a < b ? a : b; };
    const float red = unitFromLevel(redLevel), green = unitFromLevel(greenLevel),
                blue = unitFromLevel(blueLevel);
    const float max = larger(larger(red, green), blue), min = smaller(smaller(red, green), blue);
    const float spread = max - min;

    float across = red - green, sector = 4.0f;
    across = green == max ? blue - red : across;
    sector = green == max ? 2.0f : sector;
    across = red == max ? green - blue : across;
    sector = red == max ? 0.0f : sector;
    const float hue = (across / (spread == 0.0f ? 1.0f : spread) + sector) * 60.0f;
    const float around = hue + 360.0f;
    return {hue < 0.0f ? around : hue, max, spread};
}

}  // namespace krl
