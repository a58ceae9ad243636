#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "core/Numbers.h"
#include "krlimage/pixel.h"
#include "reference/ColourSpaceReference.h"

/// The point effects as one pixel meets them, step by step.
namespace krl::reference {

/// Lower bounds of `level` equal bands of `whole`, with the end of the last one after them.
inline std::vector<int> bandBounds(int level, int whole) {
    std::vector<int> bounds;
    const float step = float(double(whole) / level);
    for (int j = 0; j < level; ++j) bounds.push_back(truncate(j * double(step)));
    bounds.push_back(whole);
    return bounds;
}

inline int walkBands(int v, const std::vector<int>& bounds, int whole) {
    for (size_t j = 0; j + 1 < bounds.size(); ++j) {
        const int lo = bounds[j], hi = bounds[j + 1];
        if (lo < v && v < hi) {
            if (lo == 0)
                v = 0;
            else if (hi == whole)
                v = whole;
            else
                v = lo;
        }
    }
    return v;
}

inline int levels(int i, int minLevel, float midGamma, int maxLevel, int outMin, int outMax) {
    const auto level = [](int v) { return v < 0 ? 0 : v > 255 ? 255 : v; };
    if (midGamma < 0.1) midGamma = 0.1f;
    if (midGamma > 9.99) midGamma = 9.99f;
    const float lo = float(level(minLevel) / 255.0), hi = float(level(maxLevel) / 255.0);
    const float outLo = float(level(outMin) / 255.0), outHi = float(level(outMax) / 255.0);
    const double inRange = double(hi) - double(lo), outRange = double(outHi) - double(outLo);
    const float g = float(1.0 / double(midGamma));
    float t = float((i / 255.0 - double(lo)) / inRange);
    if (t < 0) t = 0;
    if (t > 1) t = 1;
    const float r = float(std::pow(double(t), double(g)));
    double out = (double(r) * outRange + double(outLo)) * 255;
    if (out < 0) out = 0;
    if (out > 255) out = 255;
    return truncate(out) & 255;
}

inline uint8_t mixOf256(int from, int to, int opacity) {
    return uint8_t(from + (wrapped(int64_t{to - from} * opacity) >> 8));
}

inline Pixel desaturatePro(Pixel p, float red, float green, float blue, int opacity, bool equalise) {
    const float weights = float(double(green) + blue + red);
    const float pb = p.blue * blue, pg = p.green * green, pr = p.red * red;
    double v = double(pg) + double(pb) + double(pr);
    if (equalise && weights != 0) v = truncate(v) / double(weights);
    int n = truncate(v);
    if (n < 0) n = 0;
    if (n > 255) n = 255;
    return {mixOf256(p.blue, n, opacity), mixOf256(p.green, n, opacity), mixOf256(p.red, n, opacity),
            p.alpha};
}

/// The bytes of a hue, saturation and value.
inline Pixel fromHsv(float hue, float saturation, float value, uint8_t alpha) {
    int red, green, blue;
    hsvToRgb(hue, saturation, value, &red, &green, &blue);
    return {uint8_t(blue), uint8_t(green), uint8_t(red), alpha};
}

inline float limitedToUnit(float value) {
    if (value < 0) return 0;
    if (value > 1) return 1;
    return value;
}

inline Pixel saturation(Pixel p, float factor) {
    float h, s, v;
    rgbToHsv(p.red / 255.0f, p.green / 255.0f, p.blue / 255.0f, &h, &s, &v);
    s = limitedToUnit(s * factor);
    if (s == 0) {
        const auto grey = uint8_t(truncate(v * 255.0 + 0.5));
        return {grey, grey, grey, p.alpha};
    }
    return fromHsv(h, s, v, p.alpha);
}

inline Pixel lightnessHSV(Pixel p, float lightness) {
    const float d = float(lightness - 1.0);
    float h, s, v;
    rgbToHsv(p.red / 255.0f, p.green / 255.0f, p.blue / 255.0f, &h, &s, &v);
    v = v + d;
    if (d > 0) s = limitedToUnit(float((1.0 - d) * s));
    return fromHsv(h, s, limitedToUnit(v), p.alpha);
}

inline Pixel lightnessHLS(Pixel p, float lightness) {
    int h, l, s;
    rgbToHls(p.red, p.green, p.blue, &h, &l, &s);
    l = truncate(l * double(lightness));
    if (l < 0) l = 0;
    if (l > 360) l = 360;
    int red = p.red, green = p.green, blue = p.blue;
    hlsToRgb(h, l, s, &red, &green, &blue);
    return {uint8_t(blue), uint8_t(green), uint8_t(red), p.alpha};
}

inline int turnedOnce(int hue) {
    if (hue >= 360) hue -= 360;
    if (hue < 0) hue += 360;
    return hue;
}

/// `hueColourise`, or `hueShift` where `shift` is true.
inline Pixel newHue(Pixel p, int hueValue, int density, bool shift) {
    const float mix = float(density / 100.0);
    if (hueValue > 360 || hueValue < 0) hueValue = hueValue % 360;
    int h, l, s;
    rgbToHls(p.red, p.green, p.blue, &h, &l, &s);
    const int hue = shift ? turnedOnce(h + hueValue) : hueValue;
    int red = p.red, green = p.green, blue = p.blue;
    hlsToRgb(hue, l, s, &red, &green, &blue);
    const auto mixed = [=](int became, int was) {
        double out = (became - was) * double(mix) + was;
        if (out < 0) out = 0;
        if (out > 255) out = 255;
        return uint8_t(truncate(out));
    };
    return {mixed(blue, p.blue), mixed(green, p.green), mixed(red, p.red), p.alpha};
}

inline Pixel posteriseHue(Pixel p, int level, int rotation) {
    int h, l, s;
    rgbToHls(p.red, p.green, p.blue, &h, &l, &s);
    h = walkBands(h, bandBounds(level, 360), 360);
    h = turnedOnce(wrapped(int64_t{h} + rotation));
    int red = p.red, green = p.green, blue = p.blue;
    hlsToRgb(h, l, s, &red, &green, &blue);
    return {uint8_t(blue), uint8_t(green), uint8_t(red), p.alpha};
}

}  // namespace krl::reference
