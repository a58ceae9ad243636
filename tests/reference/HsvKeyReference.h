#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include "core/LookupTables.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/matte/KeyMatte.h"
#include "support/Picture.h"

/// The keys on hue, saturation and value, one pixel at a time and one test after another.
namespace krl::test::reference {

inline Picture keyed(Picture picture, bool keep, bool invert,
                     const std::function<uint8_t(const Hsv&)>& matteOf) {
    const float* unit = sharedTables().unitFromByte;
    for (Pixel& p : picture.pixels()) {
        const uint8_t m = matteOf(rgbToHsv(unit[p.red], unit[p.green], unit[p.blue]));
        p.alpha = applyKeyMatte(p.alpha, m, keep, invert);
    }
    return picture;
}

struct ChromaArguments {
    float huePick, innerHue, outerHue, satPick, innerSat, outerSat, valPick, innerVal, outerVal;
};

/// A real limited to 0..255 and converted, where what does not fit becomes the least integer.
inline uint8_t levelOf(double value) { return static_cast<uint8_t>(truncate(clampTo(value, 0.0, 255.0))); }

/// The matte of a saturation or value, where there is one.
inline std::optional<uint8_t> percentMatte(float x, float pick, float inner, float outer) {
    const auto bound = [](double percent) { return static_cast<float>(clampTo(percent / 100.0, 0.0, 1.0)); };
    const float low = bound(double(pick) - inner), high = bound(double(pick) + inner);
    const float outerLow = bound(double(pick) - inner - outer),
                outerHigh = bound(double(pick) + inner + outer);
    const auto scale = static_cast<float>(255.0 / (outer / 100.0));
    if (low <= x && x <= high) return uint8_t(0);
    if (outerLow <= x && x < low) return levelOf((double(low) - x) * scale);
    if (high < x && x <= outerHigh) return levelOf((double(x) - high) * scale);
    return {};
}

inline std::optional<uint8_t> hueMatte(float hue, float pick, float inner, float outer) {
    const auto low = static_cast<float>((double(pick) - inner) / 360.0);
    const auto high = static_cast<float>((double(pick) + inner) / 360.0);
    const auto outerLow = static_cast<float>((double(pick) - inner - outer) / 360.0);
    const auto outerHigh = static_cast<float>((double(pick) + inner + outer) / 360.0);
    const auto scale = static_cast<float>(255.0 / (outer / 360.0));
    const float hn = hue * 0.0027777778450399637f;
    const auto ramp = [&](double x) { return levelOf(x * scale); };

    std::optional<uint8_t> matte;
    if (low <= hn && hn <= high) matte = uint8_t(0);
    if (outerLow < 0) {
        if (0 <= hn && hn < low) matte = ramp(double(low) - hn);
        if (double(outerLow) + 1.0 <= hn && hn <= 1) matte = ramp(1.0 + low - hn);
    } else if (outerLow <= hn && hn < low) {
        matte = ramp(double(low) - hn);
    }
    if (outerHigh >= 1) {
        if (high < hn && hn <= 1) matte = ramp(double(hn) - high);
        if (0 <= hn && hn <= double(outerHigh) - 1.0) matte = ramp(1.0 + hn - high);
    } else if (high < hn && hn <= outerHigh) {
        matte = ramp(double(hn) - high);
    }
    return matte;
}

inline uint8_t chromaMatte(const Hsv& colour, ChromaArguments a) {
    for (float* hue : {&a.huePick, &a.innerHue, &a.outerHue}) *hue = clampTo(*hue, 0.0f, 360.0f);
    a.satPick = static_cast<float>(a.satPick * 100.0);
    a.valPick = static_cast<float>(a.valPick * 100.0);
    for (float* percent : {&a.satPick, &a.innerSat, &a.outerSat, &a.valPick, &a.innerVal, &a.outerVal})
        *percent = clampTo(*percent, 0.0f, 100.0f);

    const auto& screen = sharedTables().blendScreen;
    const auto saturation = percentMatte(colour.saturation, a.satPick, a.innerSat, a.outerSat);
    const auto value = percentMatte(colour.value, a.valPick, a.innerVal, a.outerVal);
    if (!saturation || !value) return 255;
    const uint8_t both = screen[*saturation][*value];
    if (colour.hue == -1.0f) return both;
    const auto hue = hueMatte(colour.hue, a.huePick, a.innerHue, a.outerHue);
    return hue ? screen[*hue][both] : 255;
}

/// A matte from a place on the ramp, rounded half away from zero.
inline uint8_t softMatte(double level, int32_t black, int32_t white) {
    const auto slope = static_cast<float>(256.0 / (white - black + 1));
    const int32_t rounded = truncate(std::round((level - black) * slope));
    return uint8_t(rounded <= 0 ? 0 : rounded > 255 ? 255 : rounded);
}

inline uint8_t huePickMatte(float hue, float pickHue, float dynamicRange, int32_t black, int32_t white) {
    black = std::clamp(black, 0, 255), white = std::clamp(white, 0, 255);
    const auto range = static_cast<float>(clampTo(dynamicRange, 0.0f, 1.0f) * 360.0);
    const uint8_t outside = softMatte(255.0, black, white);
    if (hue == -1.0f) return outside;
    const int32_t i = truncate(float(hue + (180.0f - pickHue)));
    if (i < 0 || i > 359) return outside;
    if (!(float(180.0 - range) <= float(i) && float(i) <= float(180.0 + range))) return outside;
    return softMatte(std::abs(i - 180) / double(range) * 255.0, black, white);
}

inline uint8_t unitPickMatte(float x, float pick, float dynamicRange, int32_t black, int32_t white) {
    black = std::clamp(black, 0, 255), white = std::clamp(white, 0, 255);
    const float range = clampTo(dynamicRange, 0.0f, 1.0f);
    const float low = clampTo(float(pick - range), 0.0f, 9.0f),
                high = clampTo(float(pick + range), -9.0f, 1.0f);
    float d = 1.0f;
    if (low <= x && x <= high) d = std::fabs(float(float(x - pick) / range));
    const int32_t index = truncate(d * 255.0);
    return softMatte(std::clamp(index, 0, 255), black, white);
}

}  // namespace krl::test::reference
