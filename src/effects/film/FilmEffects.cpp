#include "effects/film/FilmEffects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/ImageCopy.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/colour/HsvLanes.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/ramp/Curve.h"

namespace krl {

namespace {

/// What two bytes become together.
class PairTable {
public:
    template <class Entry>
    explicit PairTable(const Entry& entry) : entries_(256 * 256) {
        for (int32_t a = 0; a < 256; ++a)
            for (int32_t b = 0; b < 256; ++b)
                entries_[size_t(a) * 256 + size_t(b)] = static_cast<uint8_t>(entry(a, b));
    }

    const uint8_t* row(size_t a) const { return entries_.data() + a * 256; }
    uint8_t operator()(size_t a, size_t b) const { return entries_[a * 256 + b]; }

private:
    std::vector<uint8_t> entries_;
};

/// Multiplies every saturation, limited to 0..1.
KRL_VECTOR_LEVELS void scaleSaturations(float (&saturations)[kBlockPixels], float factor) {
    for (float& saturation : saturations)
        saturation = static_cast<float>(clampUnit(double{saturation} * factor));
}

/// The same for colours. Channels come back truncated.
void saturate(ColourLanes& colours, float factor) {
    HsvLanes hsv;
    toHsv(colours, hsv);
    scaleSaturations(hsv.saturation, factor);
    fromHsv(hsv, colours, 0.0);
}

/// Means of the three colours.
KRL_VECTOR_LEVELS void meansOf(const ColourLanes& colours, int32_t (&means)[kBlockPixels]) {
    for (size_t i = 0; i < kBlockPixels; ++i)
        means[i] = static_cast<int32_t>(
            thirdOf(static_cast<uint32_t>(colours.blue[i] + colours.green[i] + colours.red[i])));
}

/// Sends every lane through the row of `table` that stands beside it.
void printThrough(int32_t (&lanes)[kBlockPixels], const PairTable& table,
                  const int32_t (&rows)[kBlockPixels]) {
    const uint8_t* entries = table.row(0);
    for (size_t i = 0; i < kBlockPixels; ++i) lanes[i] = entries[rows[i] << 8 | lanes[i]];
}

/// How far along a ramp each lane stands by its luma, 0 to 1.
KRL_VECTOR_LEVELS void placesByLuma(const ColourLanes& colours, float (&places)[kBlockPixels]) {
    for (size_t i = 0; i < kBlockPixels; ++i) {
        const float blue = static_cast<float>(colours.blue[i] * 114) / 1000.0f;
        const float green = static_cast<float>(colours.green[i] * 587) / 1000.0f;
        const float red = static_cast<float>(colours.red[i] * 299) / 1000.0f;
        const auto luma = static_cast<float>(double{blue} + green + red);
        places[i] = static_cast<float>(luma * (1.0 / 255.0));
    }
}

/// Mixes the lanes of one colour with the samples at their places. A place lies within 0..1, so its
/// index lies within the list.
KRL_VECTOR_LEVELS void mixWithRamp(int32_t (&lanes)[kBlockPixels], const float (&places)[kBlockPixels],
                                   const CurveSample* samples, int32_t last, double share) {
    int32_t indices[kBlockPixels], values[kBlockPixels];
    for (size_t i = 0; i < kBlockPixels; ++i) indices[i] = static_cast<int32_t>(double(last) * places[i]);
    for (size_t i = 0; i < kBlockPixels; ++i) values[i] = samples[indices[i]].value;
    const double rest = 1.0 - share;
    for (size_t i = 0; i < kBlockPixels; ++i) lanes[i] = truncatedByte(lanes[i] * rest + values[i] * share);
}

/// Contrast as a factor in 1024ths.
int32_t contrastFactor(float contrast) { return truncate(clampTo<double>(contrast, 0.0, 2.0) * 1024.0); }

/// An opacity of 0..1 as a level.
int32_t opacityLevel(float opacity) { return truncatedByte(clampUnit(opacity) * 255.0); }

/// From `from` toward `to` by `level` in 256ths, falling short of `to` even at 255. A sum of bytes by shares
/// of 256 in all fits 16 bits.
uint8_t shiftToward(uint8_t from, uint8_t to, uint16_t level) {
    return static_cast<uint8_t>(static_cast<uint16_t>(from * (256 - level) + to * level) >> 8);
}

/// How night falls on a run of bytes.
struct Night {
    static constexpr int32_t kLanes = 1024;

    uint16_t tints[kLanes];  ///< by the channel of each byte
    uint16_t days[kLanes];   ///< how much stays of the day; alpha is day as a whole
    uint16_t sharpLevel, highlightLevel;

    Night(Colour colour, int32_t dayLevel, int32_t sharp, int32_t highlight)
        : sharpLevel(static_cast<uint16_t>(sharp)), highlightLevel(static_cast<uint16_t>(highlight)) {
        const uint8_t channelTints[] = {colour.blue(), colour.green(), colour.red(), 0};
        for (size_t i = 0; i < size_t(kLanes); ++i) {
            tints[i] = channelTints[i % 4];
            days[i] = static_cast<uint16_t>(i % 4 == 3 ? 256 : dayLevel);
        }
    }
};

/// Makes night of up to `Night::kLanes` bytes and their blurs: mixes and tints them, screens back what was
/// bright, and mixes again. Alpha takes the first mix.
KRL_VECTOR_LEVELS void darken(const Night& night, const uint8_t* sharp, const uint8_t* soft, uint8_t* out,
                              int32_t count) {
    const uint16_t sharpLevel = night.sharpLevel, highlightLevel = night.highlightLevel;
    for (int32_t i = 0; i < count; ++i) {
        const uint8_t mixed = shiftToward(soft[i], sharp[i], sharpLevel);
        const auto tint = static_cast<uint8_t>(static_cast<uint16_t>(night.tints[i] * mixed) >> 8);
        const auto highlight = static_cast<uint8_t>(sharp[i] < 128 ? 0 : (sharp[i] - 128) * 2);
        const uint8_t lit = shiftToward(tint, screenedByte(highlight, tint), highlightLevel);
        out[i] = shiftToward(lit, mixed, night.days[i]);
    }
}

}  // namespace

Status bleachBypass(ImageEngine& engine, int32_t opacity, float contrast, float saturation) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    const int32_t factor = contrastFactor(contrast);
    const ByteCurve silver =
        byteCurve([=](int32_t i) { return clampByte(wrapAdd(wrapMultiply(i - 127, factor) / 1024, 127)); });
    const int32_t laid = clampTo(opacity, 0, 255);
    const PairTable print([&](int32_t mean, int32_t byte) {
        return tables.scaleByte[laid][tables.blendOverlay[silver[size_t(mean)]][byte]] +
               tables.scaleByte[255 - laid][byte];
    });
    const auto colourfulness = static_cast<float>(clampTo<double>(saturation, 0.0, 2.0));
    return forEachLaneBatch(engine, [&](ColourLanes& colours) {
        int32_t means[kBlockPixels];
        meansOf(colours, means);
        printThrough(colours.blue, print, means);
        printThrough(colours.green, print, means);
        printThrough(colours.red, print, means);
        if (colourfulness != 1.0f) saturate(colours, colourfulness);
    });
}

Status dayForNight(ImageEngine& engine, int32_t blur, float blurOpacity, Colour rgbColor, float colorOpacity,
                   float highlightOpacity, float saturation, int32_t brightness, float contrast, float gamma,
                   ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const Night night(rgbColor, opacityLevel(colorOpacity), opacityLevel(blurOpacity),
                      opacityLevel(highlightOpacity));
    const double contrastStep = contrastFactor(contrast), offset = clampTo(brightness, -255, 255);
    const double exponent = 1.0 / static_cast<float>(clampTo<double>(gamma, 0.0, 2.0));
    const ByteCurve tone = byteCurve([=](int32_t i) {
        const auto bent = static_cast<float>(std::pow(double(i), exponent));
        return truncatedByte(127.0 + (bent - 127.0) * contrastStep / 1024.0 + offset);
    });
    const auto colourfulness = static_cast<float>(clampTo<double>(saturation, 0.0, 2.0));

    const ImageCopy soft(image);
    if (blur > 0) TentBlur(engine.getThreadCount()).blurRGBA(soft.row(0), image.height, image.width, blur);
    const ChannelTarget written = target == ChannelTarget::RGB ? target : ChannelTarget::RGBA;
    return mixBytes(
        engine, soft.row(0), written,
        [&](const uint8_t* sharp, const uint8_t* blurred, uint8_t* out, int32_t count) {
            for (int32_t i = 0; i < count; i += Night::kLanes)
                darken(night, sharp + i, blurred + i, out + i, std::min(Night::kLanes, count - i));
            Pixel *first = reinterpret_cast<Pixel*>(out), *last = first + count / 4;
            applyCurveTo<0, 1, 2>(first, last, tone);
            if (colourfulness != 1.0f)
                recolourLanes(first, last, [=](ColourLanes& colours) { saturate(colours, colourfulness); });
        });
}

Status twoStripColor(ImageEngine& engine, int32_t, int32_t, int32_t) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    // The key ink is what the brightest byte lacks; the print shows the magenta ink on top of it.
    const PairTable print([&](int32_t brightest, int32_t green) {
        const auto key = static_cast<float>(1.0 - brightest / 255.0);
        const auto lack = static_cast<float>(1.0 - green / 255.0);
        const auto magenta = key == 1.0f ? 0.0f : static_cast<float>((double{lack} - key) / (1.0 - key));
        const auto inked = static_cast<float>((1.0 - key) * magenta + key);
        return clampByte(truncate(255.0 * (1.0 - std::min(inked, 1.0f)) + 0.5));
    });
    for (int32_t y = 0; y < image.height; ++y) {
        Pixel* row = image.row(y);
        for (Pixel* p = row; p != row + image.width; ++p) {
            const uint8_t brightest = std::max({p->blue, p->green, p->red});
            *p = {0, print(brightest, p->green), 0, p->alpha};
        }
    }
    return kStatusOk;
}

Status threeStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue) {
    const auto dyeOf = [](int32_t expand) {
        return byteCurve([=](int32_t separation) {
            const int32_t i = 255 - separation;
            return i < expand ? 0 : truncate((double(i) - expand) * (256.0 / (256.0 - expand)));
        });
    };
    const ByteCurve blueDye = dyeOf(expandBlue), greenDye = dyeOf(expandGreen), redDye = dyeOf(expandRed);
    return forEachPixel(engine, [&](Pixel& p) {
        const auto dye = [](const ByteCurve& curve, int32_t own, int32_t others) {
            return int32_t{curve[clampByte(own - (others >> 1))]};
        };
        const int32_t blue = dye(blueDye, p.blue, p.red + p.green);
        const int32_t green = dye(greenDye, p.green, p.red + p.blue);
        const int32_t red = dye(redDye, p.red, p.green + p.blue);
        p.blue = static_cast<uint8_t>((red + green) * p.blue >> 9);
        p.green = static_cast<uint8_t>((red + blue) * p.green >> 9);
        p.red = static_cast<uint8_t>((green + blue) * p.red >> 9);
    });
}

Status multiColourise(ImageEngine& engine, std::span<const CurveKey> colourValues, float strength) {
    if (Status state = engine.imageStatus()) return state;
    const double share = clampUnit(strength);
    const ColourCurve curve({colourValues.begin(), colourValues.end()}, 255);
    const auto mix = [&](int32_t(&lanes)[kBlockPixels], const float(&places)[kBlockPixels], size_t channel) {
        const std::span<const CurveSample> samples = curve.samples(channel);
        mixWithRamp(lanes, places, samples.data(), static_cast<int32_t>(samples.size()) - 1, share);
    };
    return forEachLaneBatch(engine, [&](ColourLanes& colours) {
        float places[kBlockPixels];
        placesByLuma(colours, places);
        mix(colours.blue, places, 0);
        mix(colours.green, places, 1);
        mix(colours.red, places, 2);
    });
}

}  // namespace krl
