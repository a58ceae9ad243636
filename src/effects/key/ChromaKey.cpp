#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "catalogue/Catalogue.h"
#include "core/ByteArithmetic.h"
#include "core/LookupTables.h"
#include "core/VectorLevels.h"
#include "effects/key/ExtremesTable.h"
#include "effects/key/HueSpan.h"
#include "effects/key/KeyChoices.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The range of one component: matte 0 on `low..high`, a ramp on either side out to the outer
/// bounds, and none beyond, which counts as 255.
struct KeyWindow {
    float low = 0, high = 0, outerLow = 0, outerHigh = 0;
    float scale = 0;  ///< levels per unit of distance, infinite where the ramp has no width
};

/// A range of hues in turns, from one in degrees. Bounds below 0 or from 1 on reach across the seam.
KeyWindow hueWindow(const KeyRange& range) {
    const auto limited = [](float degrees) { return clampTo(degrees, 0.0f, 360.0f); };
    const float inner = limited(range.inner), outer = limited(range.outer);
    const double pick = limited(range.pick);
    const auto turns = [](double degrees) { return static_cast<float>(degrees / 360.0); };
    return {.low = turns(pick - inner),
            .high = turns(pick + inner),
            .outerLow = turns(pick - inner - outer),
            .outerHigh = turns(pick + inner + outer),
            .scale = static_cast<float>(255.0 / (outer / 360.0))};
}

/// A range of saturations or values on 0..1, from one in percent around a pick on 0..1.
KeyWindow unitWindow(const KeyRange& range) {
    const auto limited = [](double percent) { return clampTo(static_cast<float>(percent), 0.0f, 100.0f); };
    const float inner = limited(range.inner), outer = limited(range.outer);
    const double pick = limited(range.pick * 100.0);
    const auto bound = [](double percent) { return static_cast<float>(clampUnit(percent / 100.0)); };
    return {.low = bound(pick - inner),
            .high = bound(pick + inner),
            .outerLow = bound(pick - inner - outer),
            .outerHigh = bound(pick + inner + outer),
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
KRL_VECTOR_LEVELS HueTally tallyHues(const KeyWindow& window, const float* hues, size_t count) {
    const float low = window.low, high = window.high;
    const float outerLow = window.outerLow, outerHigh = window.outerHigh;
    int32_t ramped = 0, off = 0;
    for (size_t i = 0; i < count; ++i) {
        const float turn = hues[i] * kTurnsPerDegree;
        ramped += (turn < low) | (turn > high);
        off += (turn < outerLow) | (turn > outerHigh);
    }
    return {static_cast<int32_t>(count) - ramped, off};
}

/// Mattes of hues for a window that stays off the seam of the circle.
KRL_VECTOR_LEVELS void plainHueMattes(const KeyWindow& window, const float* hues, size_t count,
                                      uint8_t* mattes) {
    constexpr double kOff = std::numeric_limits<double>::infinity();
    const double low = window.low, high = window.high;
    const double outerLow = window.outerLow, outerHigh = window.outerHigh;
    // A width of -0 gives a slope below 0, which no ramp shows; distances within the range are below 0 too.
    const double scale = std::fabs(window.scale);
    for (size_t i = 0; i < count; ++i) {
        const double turn = hues[i] * kTurnsPerDegree;
        const double distance = std::max(low - turn, turn - high);
        const bool off = (turn < outerLow) | (turn > outerHigh);
        mattes[i] = truncatedByte((off ? kOff : distance) * scale);
    }
}

/// Mattes of hues for any window. A later test that holds overrides an earlier one, as where wide
/// ranges meet themselves around the circle. A turn is always below 1, so the tests across the seam
/// hold only where a bound reaches across it.
KRL_VECTOR_LEVELS void wrappedHueMattes(const KeyWindow& window, const float* hues, size_t count,
                                        uint8_t* mattes) {
    const double low = window.low, high = window.high, scale = window.scale;
    const double outerLow = window.outerLow, outerHigh = window.outerHigh;
    for (size_t i = 0; i < count; ++i) {
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

KRL_VECTOR_LEVELS void screen(const uint8_t* __restrict over, uint8_t* __restrict mattes, size_t count) {
    for (size_t i = 0; i < count; ++i) mattes[i] = screenedByte(over[i], mattes[i]);
}

/// Screens the mattes of hues over those of saturation and value.
void screenHues(const KeyWindow& window, const float* hues, size_t count, uint8_t* mattes) {
    const bool plain = window.outerLow >= 0.0f && window.outerHigh < 1.0f;
    if (plain) {
        // Most batches are wholly on the backing or on the subject.
        const HueTally tally = tallyHues(window, hues, count);
        if (tally.on == static_cast<int32_t>(count)) return;
        if (tally.off == static_cast<int32_t>(count)) return void(std::fill_n(mattes, count, uint8_t(255)));
    }
    std::array<uint8_t, kBatchPixels> ofHue;
    (plain ? plainHueMattes : wrappedHueMattes)(window, hues, count, ofHue.data());
    screen(ofHue.data(), mattes, count);
}

}  // namespace

/// Keys on hue, saturation and value at once: each component's matte is 0 within `inner` of its pick, rises
/// to 255 over `outer` beyond that, and the three are screened over each other.
Status chromaKey(ImageEngine& engine, const KeyRange& hue, const KeyRange& saturation, const KeyRange& value,
                 bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const KeyWindow hues = hueWindow(hue), saturations = unitWindow(saturation), values = unitWindow(value);

    // No matte counts as 255 and a grey's hue as 0: screened with anything, 255 stays 255 and 0
    // changes nothing.
    const ExtremesTable unitMattes(engine.tables(), [&](const Hsv& colour) {
        return screenedByte(matteIn(saturations, colour.saturation), matteIn(values, colour.value));
    });
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, size_t count, uint8_t* mattes) {
        unitMattes.mattesOf(pixels, count, mattes);
        if (std::all_of(mattes, mattes + count, [](uint8_t matte) { return matte == 255; })) return;
        std::array<float, kBatchPixels> turns;
        huesOf(pixels, count, kNoHue, turns.data());
        screenHues(hues, turns.data(), count, mattes);
    });
}

void describeChromaKey(Catalogue& catalogue) {
    const auto degrees = [](double to, double example) {
        return NumberRange{.from = 0, .to = to, .example = example, .least = 0, .most = 360};
    };
    const auto unit = [](double example) {
        return NumberRange{.from = 0, .to = 1, .example = example, .least = 0, .most = 1};
    };
    const auto percent = [](double example) {
        return NumberRange{.from = 0, .to = 100, .example = example, .least = 0, .most = 100};
    };
    catalogue.add("krlImageChromaKey", chromaKey)
        .summary("Keys on hue, saturation and value at once, each with a full and a soft range.")
        .words("green screen, greenscreen, blue screen, cut out, background removal, matte, chroma")
        .real("huePick", degrees(360, 120), "hue to key, in degrees")
        .real("innerHue", degrees(180, 25), "degrees to either side keyed in full")
        .real("outerHue", degrees(180, 20), "further degrees that fade out")
        .real("satPick", unit(0.8), "saturation to key")
        .real("innerSat", percent(35), "percent to either side keyed in full")
        .real("outerSat", percent(25), "further percent that fade out")
        .real("valPick", unit(0.7), "brightness to key")
        .real("innerVal", percent(30), "percent to either side keyed in full")
        .real("outerVal", percent(15), "further percent that fade out")
        .symbol("keepRemove", keepOrRemove(), refused("Chroma Key invalid input keep_remove option (Image)"),
                kKeepMeaning)
        .thenCompare()
        .symbol("invert", invertOrNot(), refused("Chroma Key invalid input invert option (Image)"),
                kInvertKeyMeaning)
        .inputFailure("Chroma Key input failure (Image)")
        .worksPerPixel()
        .failed("Failed Chroma Key function (Image)");
}

}  // namespace krl
