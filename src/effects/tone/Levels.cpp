#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/ExactFunctions.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// One end of a range of levels, on 0..1.
float levelUnit(int32_t level) { return static_cast<float>(clampTo(level, 0, 255) / 255.0); }

/// out = outLow + (outHigh - outLow) * ((in - low) / (high - low)) ^ (1 / midGamma), all on 0..1.
ByteCurve levelsCurve(int32_t minLevel, float midGamma, int32_t maxLevel, int32_t outMin, int32_t outMax) {
    const float low = levelUnit(minLevel), high = levelUnit(maxLevel);
    const float outLow = levelUnit(outMin), outHigh = levelUnit(outMax);
    const double inRange = double(high) - low, outRange = double(outHigh) - outLow;
    const auto exponent = static_cast<float>(1.0 / clampTo(midGamma, 0.1f, 9.99f));
    return byteCurve([=](int32_t i) {
        const auto place = static_cast<float>(clampUnit((i / 255.0 - low) / inRange));
        const auto bent = static_cast<float>(exactPower(double(place), double(exponent)));
        return truncatedByte((bent * outRange + outLow) * 255.0);
    });
}

}  // namespace

/// Spreads one range of tones over another and bends the middle. Levels are limited to 0..255, the bend to
/// 0.1..9.99; an empty range is a step.
Status levels(ImageEngine& engine, int32_t minLevel, float midGamma, int32_t maxLevel, int32_t outMin,
              int32_t outMax, LevelsChannel channel) {
    const ByteCurve curve = levelsCurve(minLevel, midGamma, maxLevel, outMin, outMax);
    switch (channel) {
        case LevelsChannel::RGBA:
            return applyCurveTo<0, 1, 2, 3>(engine, curve);
        case LevelsChannel::RGB:
            return applyCurveTo<0, 1, 2>(engine, curve);
        case LevelsChannel::Blue:
            return applyCurveTo<0>(engine, curve);
        case LevelsChannel::Green:
            return applyCurveTo<1>(engine, curve);
        case LevelsChannel::Red:
            return applyCurveTo<2>(engine, curve);
        case LevelsChannel::Alpha:
            return applyCurveTo<3>(engine, curve);
        case LevelsChannel::None:
            break;
    }
    return engine.imageStatus();
}

void describeLevels(Catalogue& catalogue) {
    const auto level = [](double example) {
        return NumberRange{.from = 0, .to = 255, .example = example, .least = 0, .most = 255};
    };
    catalogue.add("krlImageLevels", levels)
        .summary("Spreads a range of tones over another and bends the middle.")
        .words("tones, curve, black point, white point, stretch, histogram")
        .integer("minLevel", level(20), "level that becomes the darkest")
        .real("midGamma", {.from = 0.1, .to = 9.99, .example = 1.2, .least = 0.1, .most = 9.99},
              "bend of the middle; above 1.0 lightens")
        .integer("maxLevel", level(235), "level that becomes the lightest")
        .integer("outMin", level(0), "darkest level of the result")
        .integer("outMax", level(255), "lightest level of the result")
        .symbol("channel",
                {{"RGB", LevelsChannel::RGB},
                 {"Blue", LevelsChannel::Blue},
                 {"Green", LevelsChannel::Green},
                 {"Red", LevelsChannel::Red},
                 {"Alpha", LevelsChannel::Alpha}},
                otherwise(LevelsChannel::None),
                "the three colours, one of them, or transparency; any other symbol changes nothing")
        .inputFailure("Levels input failure (Image)")
        .worksPerPixel()
        .failed("Failed Levels function (Image)");
}

}  // namespace krl
