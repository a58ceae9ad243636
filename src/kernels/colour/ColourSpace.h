#pragma once

#include <cstdint>

#include "core/Numbers.h"

/// Conversions between red, green, blue and the two hue spaces: the equations, one pixel at a time.
/// `HlsLanes`, `HsvLanes` and `HueLane` are the same equations without a branch, for whole batches.
///
/// The two families have conventions of their own and do not mix:
///
/// - the integer family (`rgbToHls`, `hlsToRgb`), hue, lightness and saturation each on 0..360;
/// - the float family (`rgbToHsv`, `hsvToRgb`), hue in degrees, saturation and value on 0..1.
///
/// In both a grey has hue -1.
namespace krl {

/// Three channels as integers, 0..255 unless a conversion says otherwise.
struct Rgb {
    int32_t red = 0, green = 0, blue = 0;

    bool operator==(const Rgb&) const = default;
};

/// Hue, lightness and saturation, each 0..360; the hue of a grey is -1.
struct Hls {
    int32_t hue = 0, lightness = 0, saturation = 0;

    bool operator==(const Hls&) const = default;
};

/// Hue in degrees 0..360, or -1 for a grey; saturation and value 0..1.
struct Hsv {
    float hue = 0, saturation = 0, value = 0;

    bool operator==(const Hsv&) const = default;
};

/// Hue, lightness and saturation of three bytes, in whole numbers that round to the nearest:
///
///     lightness = (max + min) / 2, saturation = (max - min) / (max + min), above half lightness
///     (max - min) / (2 - max - min), hue = sector + 60 * (middle - min) / (max - min) degrees
inline Hls rgbToHls(int32_t red, int32_t green, int32_t blue) {
    const int32_t larger = red > green ? red : green, smaller = red < green ? red : green;
    const int32_t max = larger > blue ? larger : blue, min = smaller < blue ? smaller : blue;
    const int32_t sum = max + min, delta = max - min;
    const int32_t lightness = (sum * 360 + 255) / 510;
    if (delta == 0) return {-1, lightness, 0};

    const int32_t divisor = lightness <= 180 ? sum : 510 - sum;
    const int32_t saturation = (divisor / 2 + delta * 360) / divisor;
    const auto distance = [=](int32_t channel) { return (delta / 2 + (max - channel) * 60) / delta; };
    int32_t hue;
    if (red == max)
        hue = distance(blue) - distance(green);
    else if (green == max)
        hue = distance(red) - distance(blue) + 120;
    else
        hue = distance(green) - distance(red) + 240;
    return {hue < 0 ? hue + 360 : hue, lightness, saturation};
}

/// One channel on 0..360 from the two levels between which it moves and its own hue, which is
/// brought into 0..360 by one turn at most.
inline int32_t hueToChannel(int32_t m1, int32_t m2, int32_t hue) {
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    const auto ramp = [=](int32_t degrees) {
        return wrapAdd(wrapAdd(wrapMultiply(m2 - m1, degrees), 30) / 60, m1);
    };
    if (hue < 60) return ramp(hue);
    if (hue < 180) return m2;
    if (hue < 240) return ramp(240 - hue);
    return m1;
}

/// Three channels of `colour`, not limited to bytes. A colour without saturation is written only
/// where its hue is -1: for a grey that was given a hue, `out` keeps what it held.
inline void hlsToRgb(const Hls& colour, Rgb& out) {
    const auto [hue, lightness, saturation] = colour;
    if (saturation == 0) {
        if (hue != -1) return;
        const int32_t grey = lightness * 255 / 360;
        out = {grey, grey, grey};
        return;
    }
    const int32_t m2 = lightness <= 180 ? ((saturation + 360) * lightness + 180) / 360
                                        : lightness - (lightness * saturation + 180) / 360 + saturation;
    const int32_t m1 = 2 * lightness - m2;
    const auto channel = [=](int32_t channelHue) {
        return wrapAdd(wrapMultiply(hueToChannel(m1, m2, channelHue), 255), 180) / 360;
    };
    out = {channel(wrapAdd(hue, 120)), channel(hue), channel(wrapSubtract(hue, 120))};
}

/// Hue, saturation and value of three channels on 0..1; every operation rounds to single precision:
///
///     value = max, saturation = (max - min) / max,
///     hue = 60 * (difference of the two others / (max - min) + 0, 2 or 4 as red, green or blue is max)
inline Hsv rgbToHsv(float red, float green, float blue) {
    const float larger = red > green ? red : green, smaller = red < green ? red : green;
    const float max = larger > blue ? larger : blue, min = smaller < blue ? smaller : blue;
    const float delta = max - min;
    const float saturation = max == 0.0f ? 0.0f : delta / max;
    if (saturation == 0.0f) return {-1.0f, saturation, max};

    float hue;
    if (red == max)
        hue = (green - blue) / delta;
    else if (green == max)
        hue = (blue - red) / delta + 2.0f;
    else
        hue = (red - green) / delta + 4.0f;
    hue *= 60.0f;
    return {hue < 0.0f ? hue + 360.0f : hue, saturation, max};
}

/// A channel on 0..1 as an integer on 0..255, rounded.
inline int32_t channelFromUnit(float channel) { return truncate(channel * 255.0 + 0.5); }

/// Three channels of `colour`: the value, value * (1 - saturation), and one between them by the fraction of
/// the hue in its sector. Where saturation or value leave 0..1 so may the channels leave 0..255, and their
/// low byte counts. Hue matters only where there is saturation; one outside 0..360 has no sector of its own
/// and gives red by value and green by its fraction.
Rgb hsvToRgb(const Hsv& colour);

}  // namespace krl
