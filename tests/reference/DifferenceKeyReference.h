#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "core/LookupTables.h"
#include "kernels/matte/KeyMatte.h"
#include "krlimage/key.h"
#include "support/Picture.h"

/// The colour-difference keys and the spill suppression, step by step at each pixel.
namespace krl::test::reference {

inline int32_t clampedConversion(double value) { return std::clamp(truncate(value), 0, 255); }

inline int32_t keyOf(const Pixel& p, KeyColour colour) {
    return colour == KeyColour::Red ? p.red : colour == KeyColour::Green ? p.green : p.blue;
}

inline int32_t otherOf(const Pixel& p, KeyColour colour) {
    if (colour == KeyColour::Red) return std::max(p.green, p.blue);
    if (colour == KeyColour::Green) return std::max(p.red, p.blue);
    return std::max(p.red, p.green);
}

inline int32_t differenceOf(const Pixel& p, KeyColour colour) {
    return keyOf(p, colour) - otherOf(p, colour);
}

inline Picture colourDifference(Picture picture, KeyColour colour, int32_t black, int32_t white, bool keep,
                                bool invert) {
    const auto slope = static_cast<float>(256.0 / (double(white) - black + 1));
    for (Pixel& p : picture.pixels()) {
        const int32_t d = differenceOf(p, colour);
        const int32_t level = clampedConversion((double(d) - black) * slope);
        p.alpha = applyKeyMatte(p.alpha, uint8_t(d > white ? 255 : d < black ? 0 : level), keep, invert);
    }
    return picture;
}

/// The matte of the automatic keys at every pixel.
inline std::vector<uint8_t> automaticMattes(const Picture& picture, KeyColour colour, float userDetail,
                                            float userGrey, float thresholdVal) {
    const float detail = clampTo(userDetail, -1.0f, 1.0f), grey = clampTo(userGrey, 0.0f, 1.0f);
    const float greyLevel = grey * 255.0f, fadeStart = greyLevel * thresholdVal;
    const float fadeScale = 1.0f / (greyLevel * (1.0f - thresholdVal));
    int32_t lowest = 255, highest = 0;
    int64_t count = 0, sum = 0;
    std::vector<uint8_t> map;
    for (const Pixel& p : picture.pixels()) {
        int32_t d = differenceOf(p, colour);
        if (d > 0) {
            count += 1, sum += d;
            lowest = std::min(lowest, d), highest = std::max(highest, d);
        }
        const auto c =
            static_cast<float>(std::max({p.red, p.green, p.blue}) - std::min({p.red, p.green, p.blue}));
        if (!(c >= greyLevel)) {
            const double w = (double(c) - fadeStart) * fadeScale;
            d = c < fadeStart ? 0 : truncate(d - std::fabs(w - 1.0) * d);
        }
        map.push_back(uint8_t(std::clamp(d, 0, 255)));
    }
    const auto mid = static_cast<float>((lowest + highest) * 0.5);
    const auto mean = static_cast<float>(double(sum) / double(count));
    const auto high = static_cast<float>(mid + (double(mean) - mid) * detail);
    for (uint8_t& v : map) {
        const int32_t level = truncate((double(v) - lowest) / (double(high) - lowest) * 255.0);
        v = v <= lowest ? 0 : v >= high ? 255 : uint8_t(level);
    }
    return map;
}

/// Flatness at every pixel, from the eight neighbours of each colour byte.
inline std::vector<uint8_t> flatnessOf(const Picture& picture) {
    std::vector<uint8_t> map;
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            int32_t total = 0;
            const bool border = x == 0 || y == 0 || x == picture.width() - 1 || y == picture.height() - 1;
            for (size_t channel = 0; channel < 3 && !border; ++channel) {
                const auto s = [&](int32_t dx, int32_t dy) {
                    return int32_t(picture.at(x + dx, y + dy)[channel]);
                };
                const int32_t gv = s(-1, 1) + 2 * s(0, 1) + s(1, 1) - s(-1, -1) - 2 * s(0, -1) - s(1, -1);
                const int32_t gh = s(-1, -1) + 2 * s(-1, 0) + s(-1, 1) - s(1, -1) - 2 * s(1, 0) - s(1, 1);
                total += std::min(255, truncate(std::sqrt(double(gv * gv + gh * gh))));
            }
            map.push_back(uint8_t(sharedTables().meanOf3[765 - total]));
        }
    return map;
}

inline Picture colourDifferenceExtended(Picture picture, KeyColour colour, const ColourDifferenceContrasts& a,
                                        bool keep, bool invert) {
    const std::vector<uint8_t> flatness = flatnessOf(picture);
    const auto [edgeLow, edgeHigh] = std::minmax_element(flatness.begin(), flatness.end());
    const auto keyGate = static_cast<float>((1.0 - a.colorRange) * 127.5);
    int32_t keyLow = 255, keyHigh = 0, diffLow = 255, diffHigh = 0;
    for (const Pixel& p : picture.pixels()) {
        const int32_t k = keyOf(p, colour), d = std::max(0, differenceOf(p, colour));
        if (otherOf(p, colour) + double(keyGate) < k)
            keyLow = std::min(keyLow, k), keyHigh = std::max(keyHigh, k);
        diffLow = std::min(diffLow, d), diffHigh = std::max(diffHigh, d);
    }
    if (keyHigh < keyLow) keyLow = 0, keyHigh = 255;

    const auto narrowed = [](int32_t low, int32_t high, float contrast) {
        const auto t = static_cast<float>((high - low) * double(contrast));
        return std::pair(static_cast<float>(low + double(t)), static_cast<float>(high - double(t)));
    };
    const auto [diffL, diffH] = narrowed(diffLow, diffHigh, a.colorDifferenceContrast);
    const auto [edgeL, edgeH] = narrowed(*edgeLow, *edgeHigh, a.edgeContast);
    const auto dark = static_cast<float>(keyLow * double(a.luminocityContrast));
    for (size_t i = 0; i < flatness.size(); ++i) {
        Pixel& p = picture.pixels()[i];
        const int32_t d = std::max(0, differenceOf(p, colour)), e = flatness[i];
        const int32_t lum = std::max({p.red, p.green, p.blue});
        const int32_t stretched =
            double(d) > diffH   ? 255
            : double(d) < diffL ? 0
                                : clampedConversion((d - double(diffL)) / (double(diffH) - diffL) * 255.0);
        float edge = 255.0f;
        if (double(e) < edgeL && !(double(e) > edgeH))
            edge = 0.0f;
        else if (!(double(e) > edgeH) && edgeH != edgeL)
            edge = static_cast<float>(
                clampTo((e - double(edgeL)) / (double(edgeH) - edgeL) * 255.0, 0.0, 255.0));
        float luminance = 255.0f;
        if (lum < keyLow)
            luminance = double(lum) <= dark
                            ? 0.0f
                            : static_cast<float>(clampTo(
                                  (lum - double(dark)) / (keyLow - double(dark)) * 255.0, 0.0, 255.0));
        const float c = luminance <= edge ? luminance : static_cast<float>((double(luminance) + edge) * 0.5);
        const int32_t m = float(stretched) < c ? stretched : uint8_t(truncate(c));
        p.alpha = applyKeyMatte(p.alpha, uint8_t(m), keep, invert);
    }
    return picture;
}

inline Pixel suppressed(const Pixel& p, KeyColour colour, bool extended, int32_t t) {
    const LookupTables& tables = sharedTables();
    const uint8_t r = p.red, g = p.green, b = p.blue;
    uint8_t nr = r, ng = g, nb = b;
    if (!extended) {
        if (colour == KeyColour::Red && r > b) nr = b;
        if (colour == KeyColour::Green && g > b) ng = b;
        if (colour == KeyColour::Blue && b > g) nb = g;
    } else if (colour == KeyColour::Red) {
        const auto a = uint8_t(tables.meanOf2[b + g]);
        if (r > a) {
            nr = a;
            if (b > g) ng = a;
        }
    } else if (colour == KeyColour::Green) {
        const auto a = uint8_t(tables.meanOf2[r + b]);
        if (g > a) {
            ng = a;
            if (b > r) nr = a;
        }
    } else {
        const auto a = uint8_t(tables.meanOf2[r + g]);
        if (b > a) {
            nb = a;
            if (g > r) nr = a;
        }
    }
    const auto mixed = [&](uint8_t before, uint8_t after) {
        return uint8_t(tables.scaleByte[255 - t][before] + tables.scaleByte[t][after]);
    };
    return {mixed(b, nb), mixed(g, ng), mixed(r, nr), p.alpha};
}

}  // namespace krl::test::reference
