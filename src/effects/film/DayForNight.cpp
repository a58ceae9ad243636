#include <cmath>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/Batch.h"
#include "core/ByteArithmetic.h"
#include "core/ExactFunctions.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "effects/film/Saturate.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/Contrast.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// An opacity of 0..1 as a level.
int32_t opacityLevel(float opacity) { return truncatedByte(clampUnit(opacity) * 255.0); }

/// From `from` toward `to` by `level` in 256ths, falling short of `to` even at 255. A sum of bytes by shares
/// of 256 in all fits 16 bits.
uint8_t shiftToward(uint8_t from, uint8_t to, uint16_t level) {
    return static_cast<uint8_t>(static_cast<uint16_t>(from * (256 - level) + to * level) >> 8);
}

/// What `darken` makes of a batch of bytes.
struct Night {
    static constexpr size_t kBytes = kBatchPixels * sizeof(Pixel);

    uint16_t tints[kBytes];  ///< by the channel of each byte
    uint16_t days[kBytes];   ///< how much stays of the day; alpha stays as a whole
    uint16_t sharpLevel, highlightLevel;

    explicit Night(const DayForNightSettings& settings)
        : sharpLevel(static_cast<uint16_t>(opacityLevel(settings.blurOpacity))),
          highlightLevel(static_cast<uint16_t>(opacityLevel(settings.highlightOpacity))) {
        const Colour colour = settings.rgbColor;
        const uint8_t channelTints[] = {colour.blue(), colour.green(), colour.red(), 0};
        const int32_t dayLevel = opacityLevel(settings.colorOpacity);
        for (size_t i = 0; i < kBytes; ++i) {
            tints[i] = channelTints[i % 4];
            days[i] = static_cast<uint16_t>(i % 4 == 3 ? 256 : dayLevel);
        }
    }
};

/// Mixes up to `Night::kBytes` bytes with their blurs, tints them, screens back what was brighter than half,
/// and mixes again. Alpha takes the first mix.
KRL_VECTOR_LEVELS void darken(const Night& night, const uint8_t* sharp, const uint8_t* soft, uint8_t* out,
                              size_t count) {
    const uint16_t sharpLevel = night.sharpLevel, highlightLevel = night.highlightLevel;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t mixed = shiftToward(soft[i], sharp[i], sharpLevel);
        const auto tint = static_cast<uint8_t>(static_cast<uint16_t>(night.tints[i] * mixed) >> 8);
        const auto highlight = static_cast<uint8_t>(sharp[i] < 128 ? 0 : (sharp[i] - 128) * 2);
        const uint8_t lit = shiftToward(tint, screenedByte(highlight, tint), highlightLevel);
        out[i] = shiftToward(lit, mixed, night.days[i]);
    }
}

/// out = 127 + (in ^ (1 / gamma) - 127) * contrast + brightness, each within its limits.
ByteCurve toneCurve(const DayForNightSettings& settings) {
    const double contrast = contrastFactor(clampTo(settings.contrast, 0.0f, 2.0f));
    const double offset = clampTo(settings.brightness, -255, 255);
    const double exponent = 1.0 / clampTo(settings.gamma, 0.0f, 2.0f);
    return byteCurve([=](int32_t i) {
        const auto bent = static_cast<float>(exactPower(double(i), exponent));
        return truncatedByte(127.0 + (bent - 127.0) * contrast / 1024.0 + offset);
    });
}

}  // namespace

/// Darkens a picture beside its blur, then sets tone and saturation.
Status dayForNight(ImageEngine& engine, const DayForNightSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const Night night(settings);
    const ByteCurve tone = toneCurve(settings);
    const float colourfulness = saturationFactor(settings.saturation);

    const ScratchImage soft(image);
    leftOutWithoutThreads(TentBlur(engine).blurInto(soft, image, settings.blur, ChannelTarget::RGBA));
    const bool colourAlone = settings.target == ChannelTarget::RGB;
    return mixBytes(
        engine, soft.row(0), colourAlone ? ChannelTarget::RGB : ChannelTarget::RGBA,
        [&](const uint8_t* sharp, const uint8_t* blurred, uint8_t* out, int32_t bytes) {
            forEachBatch<Night::kBytes>(static_cast<size_t>(bytes), [&](size_t start, size_t count) {
                darken(night, sharp + start, blurred + start, out + start, count);
            });
            Pixel *first = reinterpret_cast<Pixel*>(out), *last = first + bytes / 4;
            applyCurveTo<0, 1, 2>(first, last, tone);
            if (colourfulness != 1.0f)
                recolourLanes(first, last, [=](ColourLanes& colours) { saturate(colours, colourfulness); });
        });
}

void describeDayForNight(Catalogue& catalogue) {
    const auto effect = [](ImageEngine& engine, int32_t blur, float blurOpacity, Colour rgbColor,
                           float colorOpacity, float highlightOpacity, float saturation, int32_t brightness,
                           float contrast, float gamma, ChannelTarget target) {
        return dayForNight(engine, {blur, blurOpacity, rgbColor, colorOpacity, highlightOpacity, saturation,
                                    brightness, contrast, gamma, target});
    };
    const auto share = [](double example) {
        return NumberRange{.from = 0, .to = 1, .example = example, .least = 0, .most = 1};
    };
    catalogue.add("krlImageDayForNight", +effect)
        .summary("Makes a scene shot by day look like one by moonlight.")
        .words("night, moonlight, blue, dark, american night")
        .integer("blur", {.from = 0, .to = 60, .example = 6, .least = 0, .pixels = true},
                 "radius of the softening in pixels")
        .real("blur_opacity", share(0.6), "share of the sharp picture")
        .colour("rgbColor", Colour(60, 90, 160), "colour of the night")
        .real("colorOpacity", share(0.25), "share of the colours by day; 0 tints in full")
        .real("highlightOpacity", share(0.4), "how far bright places shine through")
        .real("saturation", {.from = 0, .to = 2, .example = 0.7, .least = 0, .most = 2},
              "factor on colourfulness")
        .integer("brightness", {.from = -255, .to = 255, .example = -10, .least = -255, .most = 255},
                 "levels to add")
        .real("contrast", {.from = 0, .to = 2, .example = 1.1, .least = 0, .most = 2},
              "factor on the distance from level 127")
        .real("gamma", {.from = 0.8, .to = 1.2, .example = 1.0, .least = 0, .most = 2},
              "1.0 changes nothing, above darkens; small steps go far")
        .symbol("colourOrAlpha", colourWithAlpha(), otherwise(ChannelTarget::RGBA),
                "whether transparency is softened too")
        .inputFailure("Day For Night input failure (Image)")
        .failed("Failed Day For Night function (Image)");
}

}  // namespace krl
