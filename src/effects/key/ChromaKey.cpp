#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "core/ByteArithmetic.h"
#include "core/LookupTables.h"
#include "core/VectorLevels.h"
#include "effects/key/ExtremesTable.h"
#include "effects/key/HsvKeys.h"
#include "effects/key/HueSpan.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The range of one component: matte 0 on `low..high`, a ramp on either side out to the outer
/// bounds, and none beyond, which counts as 255.
struct KeyWindow {
    float low = 0, high = 0, outerLow = 0, outerHigh = 0;
    float scale = 0;  ///< levels per unit of distance, infinite where the ramp has no width
};

/// A range in turns. Bounds below 0 or from 1 on reach across the seam.
KeyWindow hueWindow(float pick, float inner, float outer) {
    return {.low = static_cast<float>((double(pick) - inner) / 360.0),
            .high = static_cast<float>((double(pick) + inner) / 360.0),
            .outerLow = static_cast<float>((double(pick) - inner - outer) / 360.0),
            .outerHigh = static_cast<float>((double(pick) + inner + outer) / 360.0),
            .scale = static_cast<float>(255.0 / (outer / 360.0))};
}

/// A range in percent.
KeyWindow unitWindow(float pick, float inner, float outer) {
    const auto bound = [](double percent) { return static_cast<float>(clampUnit(percent / 100.0)); };
    return {.low = bound(double(pick) - inner),
            .high = bound(double(pick) + inner),
            .outerLow = bound(double(pick) - inner - outer),
            .outerHigh = bound(double(pick) + inner + outer),
            .scale = static_cast<float>(255.0 / (outer / 100.0))};
}

/// Matte of a saturation or value.
uint8_t matteIn(const KeyWindow& window, double x) {
    if (window.low <= x && x <= window.high) return 0;
    if (window.outerLow <= x && x < window.low) return truncatedByte((window.low - x) * window.scale);
    if (window.high < x && x <= window.outerHigh) return truncatedByte((x - window.high) * window.scale);
    return 255;
}

constexpr float kTurnsPerDegree = 0.0027777778450399637f;
/// The hue of a grey. No test rejects it and no distance comes of it, so that its matte is 0 and
/// leaves the judgement to saturation and value.
constexpr float kNoHue = std::numeric_limits<float>::quiet_NaN();

/// How many of `count` hues are on the key in full, and how many off it.
struct HueTally {
    int32_t on = 0, off = 0;
};

/// The tally for a window that stays off the seam of the circle.
KRL_VECTOR_LEVELS HueTally tallyHues(const KeyWindow& window, const float* hues, ptrdiff_t count) {
    const float low = window.low, high = window.high;
    const float outerLow = window.outerLow, outerHigh = window.outerHigh;
    int32_t ramped = 0, off = 0;
    for (ptrdiff_t i = 0; i < count; ++i) {
        const float turn = hues[i] * kTurnsPerDegree;
        ramped += (turn < low) | (turn > high);
        off += (turn < outerLow) | (turn > outerHigh);
    }
    return {static_cast<int32_t>(count) - ramped, off};
}

/// Mattes of hues for a window that stays off the seam of the circle.
KRL_VECTOR_LEVELS void plainHueMattes(const KeyWindow& window, const float* hues, ptrdiff_t count,
                                      uint8_t* mattes) {
    constexpr double kOff = std::numeric_limits<double>::infinity();
    const double low = window.low, high = window.high, scale = window.scale;
    const double outerLow = window.outerLow, outerHigh = window.outerHigh;
    for (ptrdiff_t i = 0; i < count; ++i) {
        const double turn = hues[i] * kTurnsPerDegree;
        const double distance = std::max(low - turn, turn - high);
        const bool off = (turn < outerLow) | (turn > outerHigh);
        mattes[i] = truncatedByte((off ? kOff : distance) * scale);
    }
}

/// Mattes of hues for any window. A later test that holds overrides an earlier one, as where wide
/// ranges meet themselves around the circle. A turn is always below 1, so the tests across the seam
/// hold only where a bound reaches across it.
KRL_VECTOR_LEVELS void wrappedHueMattes(const KeyWindow& window, const float* hues, ptrdiff_t count,
                                        uint8_t* mattes) {
    const double low = window.low, high = window.high, scale = window.scale;
    const double outerLow = window.outerLow, outerHigh = window.outerHigh;
    for (ptrdiff_t i = 0; i < count; ++i) {
        const double turn = hues[i] * kTurnsPerDegree;
        const bool inside = (low <= turn) & (turn <= high);
        const bool below = (outerLow <= turn) & (turn < low);
        const bool belowSeam = outerLow + 1.0 <= turn;
        const bool above = (high < turn) & (turn <= outerHigh);
        const bool aboveSeam = turn <= outerHigh - 1.0;

        double distance = below ? low - turn : 0.0;
        distance = belowSeam ? 1.0 + low - turn : distance;
        distance = above ? turn - high : distance;
        distance = aboveSeam ? 1.0 + turn - high : distance;
        const bool found = inside | below | belowSeam | above | aboveSeam | std::isnan(turn);
        mattes[i] = found ? truncatedByte(distance * scale) : 255;
    }
}

KRL_VECTOR_LEVELS void screen(const uint8_t* __restrict over, uint8_t* __restrict mattes, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) mattes[i] = screenedByte(over[i], mattes[i]);
}

/// Screens the mattes of hues over those of saturation and value.
void screenHues(const KeyWindow& window, const float* hues, ptrdiff_t count, uint8_t* mattes) {
    const bool plain = window.outerLow >= 0.0f && window.outerHigh < 1.0f;
    if (plain) {
        // Most runs lie on the backing or on the subject with all their pixels.
        const HueTally tally = tallyHues(window, hues, count);
        if (tally.on == count) return;
        if (tally.off == count) return void(std::fill_n(mattes, count, uint8_t(255)));
    }
    std::array<uint8_t, kMatteBatch> ofHue;
    (plain ? plainHueMattes : wrappedHueMattes)(window, hues, count, ofHue.data());
    screen(ofHue.data(), mattes, count);
}

}  // namespace

Status chromaKey(ImageEngine& engine, float huePick, float innerHue, float outerHue, float satPick,
                 float innerSat, float outerSat, float valPick, float innerVal, float outerVal, bool keep,
                 bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const auto degrees = [](float value) { return clampTo(value, 0.0f, 360.0f); };
    const auto percent = [](double value) { return clampTo(static_cast<float>(value), 0.0f, 100.0f); };
    const KeyWindow hue = hueWindow(degrees(huePick), degrees(innerHue), degrees(outerHue));
    const KeyWindow saturation = unitWindow(percent(satPick * 100.0), percent(innerSat), percent(outerSat));
    const KeyWindow value = unitWindow(percent(valPick * 100.0), percent(innerVal), percent(outerVal));

    // No matte counts as 255 and a grey's hue as 0: screened with anything, 255 stays 255 and 0
    // changes nothing.
    const ExtremesTable unitMattes(engine.tables(), [&](const Hsv& colour) {
        return screenedByte(matteIn(saturation, colour.saturation), matteIn(value, colour.value));
    });
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, ptrdiff_t count, uint8_t* mattes) {
        unitMattes.mattesOf(pixels, count, mattes);
        if (std::all_of(mattes, mattes + count, [](uint8_t matte) { return matte == 255; })) return;
        std::array<float, kMatteBatch> hues;
        huesOf(pixels, count, kNoHue, hues.data());
        screenHues(hue, hues.data(), count, mattes);
    });
}

}  // namespace krl
