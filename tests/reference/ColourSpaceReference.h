#pragma once

#include <cstdint>
#include <cstring>

#include "core/Numbers.h"

/// The conversions step by step, as slow and plain as they come.
namespace krl::reference {

inline void rgbToHls(int red, int green, int blue, int* hue, int* lightness, int* saturation) {
    int max = red, min = red;
    if (green > max) max = green;
    if (blue > max) max = blue;
    if (green < min) min = green;
    if (blue < min) min = blue;
    const unsigned sum = unsigned(max + min);
    *lightness = int((sum * 360u + 255u) / 510u);
    if (max == min) {
        *saturation = 0;
        *hue = -1;
        return;
    }
    const int d = *lightness <= 180 ? int(sum) : 510 - max - min;
    const int delta = max - min;
    *saturation = (d / 2 + delta * 360) / d;
    const int half = delta / 2;
    const int rc = ((half + (max - red) * 60) / delta) & 0xFFFF;
    const int gc = ((half + (max - green) * 60) / delta) & 0xFFFF;
    const int bc = ((half + (max - blue) * 60) / delta) & 0xFFFF;
    if (red == max)
        *hue = bc - gc;
    else if (green == max)
        *hue = rc - bc + 120;
    else
        *hue = gc - rc + 240;
    if (*hue < 0) *hue += 360;
    if (*hue > 360) *hue -= 360;
}

/// Integers wide enough for every hue, brought back to 32 bits as the arithmetic wraps there.
inline int wrapped(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

inline int hueToChannel(int m1, int m2, int hue) {
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    if (hue < 60) return wrapped(int64_t{wrapped(int64_t{wrapped(int64_t{m2 - m1} * hue)} + 30) / 60} + m1);
    if (hue < 180) return m2;
    if (hue < 240) return ((m2 - m1) * (240 - hue) + 30) / 60 + m1;
    return m1;
}

inline void hlsToRgb(int hue, int lightness, int saturation, int* red, int* green, int* blue) {
    if (saturation == 0) {
        if (hue == -1) *red = *green = *blue = lightness * 255 / 360;
        return;
    }
    int m2;
    if (lightness <= 180)
        m2 = ((saturation + 360) * lightness + 180) / 360;
    else
        m2 = lightness - (lightness * saturation + 180) / 360 + saturation;
    const int m1 = 2 * lightness - m2;
    const auto finish = [](int channel) {
        return wrapped(int64_t{wrapped(int64_t{channel} * 255)} + 180) / 360;
    };
    *red = finish(hueToChannel(m1, m2, wrapped(int64_t{hue} + 120)));
    *green = finish(hueToChannel(m1, m2, hue));
    *blue = finish(hueToChannel(m1, m2, wrapped(int64_t{hue} - 120)));
}

inline void rgbToHsv(float red, float green, float blue, float* hue, float* saturation, float* value) {
    float max = red, min = red;
    if (green > max) max = green;
    if (blue > max) max = blue;
    if (green < min) min = green;
    if (blue < min) min = blue;
    *value = max;
    const float range = max - min;
    *saturation = 0;
    if (max != 0) *saturation = range / max;
    if (*saturation == 0) {
        *hue = -1.0f;
        return;
    }
    float h;
    if (red == max) {
        h = green - blue;
        h = h / range;
    } else if (green == max) {
        h = blue - red;
        h = h / range;
        h = h + 2;
    } else {
        h = red - green;
        h = h / range;
        h = h + 4;
    }
    h = h * 60;
    if (h < 0) h = h + 360;
    *hue = h;
}

inline void hsvToRgb(float hue, float saturation, float value, int* red, int* green, int* blue) {
    float r = value, g, b;
    if (saturation == 0) {
        g = b = value;
    } else {
        if (hue == 360) hue = 0;
        const float x = float(double(hue) / 60.0);
        const int i = truncate(x);
        const float f = float(double(x) - double(i));
        const float p = float(double(value) * (1.0 - double(saturation)));
        const float q = float(double(value) * (1.0 - double(f) * double(saturation)));
        const float t = float(double(value) * (1.0 - double(saturation) * (1.0 - double(f))));
        g = f;
        std::memcpy(&b, &i, 4);
        if (i == 0) r = value, g = t, b = p;
        if (i == 1) r = q, g = value, b = p;
        if (i == 2) r = p, g = value, b = t;
        if (i == 3) r = p, g = q, b = value;
        if (i == 4) r = t, g = p, b = value;
        if (i == 5) r = value, g = p, b = q;
    }
    *red = truncate(double(r) * 255.0 + 0.5);
    *green = truncate(double(g) * 255.0 + 0.5);
    *blue = truncate(double(b) * 255.0 + 0.5);
}

}  // namespace krl::reference
