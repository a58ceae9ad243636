#include "effects/tone/ToneEffects.h"

#include <cmath>
#include <new>

#include "core/Numbers.h"
#include "kernels/curve/ByteCurve.h"

namespace krl {

namespace {

/// The dormant path of `brightness`: a saturating step by the low byte of the magnitude.
Status brightnessWide(ImageEngine& engine, int32_t brightnessInt, ChannelTarget target) {
    const bool darken = brightnessInt < 0;
    const auto by = static_cast<uint8_t>(darken ? wrapSubtract(0, brightnessInt) : brightnessInt);
    const Pixel step = target == ChannelTarget::RGB ? Pixel{by, by, by, 0} : Pixel{0, 0, 0, by};
    return shiftSaturated(engine, step, darken);
}

}  // namespace

Status brightness(ImageEngine& engine, int32_t brightnessInt, ChannelTarget target) {
    if (engine.useWidePath()) return brightnessWide(engine, brightnessInt, target);
    return applyCurve(engine, target,
                      byteCurve([=](int32_t i) { return clampByte(wrapAdd(i, brightnessInt)); }));
}

Status contrast(ImageEngine& engine, float contrastFloat, ChannelTarget target) {
    const int32_t scale = truncate(contrastFloat * 1024.0);
    return applyCurve(engine, target, byteCurve([=](int32_t i) {
                          return clampByte(wrapMultiply(i - 127, scale) / 1024 + 127);
                      }));
}

Status gamma(ImageEngine& engine, float gamma, ChannelTarget target) {
    const auto exponent = static_cast<float>(1.0 / gamma);
    return applyCurve(engine, target, byteCurve([=](int32_t i) {
                          return truncatedByte(static_cast<float>(std::pow(double(i), double(exponent))));
                      }));
}

Status invert(ImageEngine& engine, ChannelTarget target) {
    return applyCurve(engine, target, byteCurve([](int32_t i) { return 255 - i; }));
}

namespace {

/// One end of a range of levels, on 0..1.
float levelUnit(int32_t level) { return static_cast<float>(clampTo(level, 0, 255) / 255.0); }

ByteCurve levelsCurve(int32_t minLevel, float midGamma, int32_t maxLevel, int32_t outMin, int32_t outMax) {
    const float low = levelUnit(minLevel), high = levelUnit(maxLevel);
    const float outLow = levelUnit(outMin), outHigh = levelUnit(outMax);
    const double inRange = double(high) - low, outRange = double(outHigh) - outLow;
    const auto exponent = static_cast<float>(1.0 / clampTo(midGamma, 0.1f, 9.99f));
    return byteCurve([=](int32_t i) {
        const auto place = static_cast<float>(clampUnit((i / 255.0 - low) / inRange));
        const auto bent = static_cast<float>(std::pow(double(place), double(exponent)));
        return truncatedByte((bent * outRange + outLow) * 255.0);
    });
}

}  // namespace

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

Status posterise(ImageEngine& engine, int32_t level, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (level < 0) throw std::bad_alloc();  // as a count of bounds, more than any memory holds
    // From 256 bands on no byte lies strictly between two bounds: there is nothing to walk.
    const int32_t bands = level > 255 ? 0 : level;
    const auto step = static_cast<float>(255.0 / level);
    const auto bound = [=](int32_t j) { return j == bands ? 255 : truncate(j * double(step)); };
    return applyCurve(engine, target, byteCurve([=](int32_t i) {
                          for (int32_t j = 0; j < bands; ++j) {
                              const int32_t low = bound(j), high = bound(j + 1);
                              if (low < i && i < high) i = low == 0 ? 0 : high == 255 ? 255 : low;
                          }
                          return i;
                      }));
}

Status solarise(ImageEngine& engine, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const auto& solarised = engine.tables().solariseCurve;
    return applyCurve(engine, target, byteCurve([&](int32_t i) { return solarised[i]; }));
}

Status superContrast(ImageEngine& engine, int32_t low, int32_t high, ChannelTarget target) {
    const int32_t black = clampTo(low, 0, 255), white = clampTo(high, 0, 255);
    const auto slope = static_cast<float>(256.0 / (white - black + 1));
    return applyCurve(engine, target, byteCurve([=](int32_t i) {
                          return i > white ? 255 : i < black ? 0 : truncate((i - black) * double(slope));
                      }));
}

Status threshold(ImageEngine& engine, int32_t threshold, ChannelTarget target) {
    const int32_t limit = clampTo(threshold, 0, 255);
    const ByteCurve curve = byteCurve([=](int32_t level) { return level > limit ? 255 : 0; });
    if (target != ChannelTarget::RGB) return applyCurve(engine, target, curve);
    return recolourByMean(engine,
                          [&](Pixel* first, Pixel* last) { applyCurveTo<0, 1, 2>(first, last, curve); });
}

namespace {

/// Lowers or lifts light `x` on 0..1. An offset of 0 would come back from its logarithm unchanged but
/// for the last bits, so light is left alone then and no platform's arithmetic can tip a byte.
long double offsetLight(long double x, float offset) {
    if (offset == 0) return x;
    if (offset < 0) return x + 1 - std::exp((0.5L - std::exp(1.2L * (1 - x))) * offset);
    return std::log10(std::pow(10.0L, 255 * x / 180) + 20.0L * offset) * 180 / 255;
}

ByteCurve exposureCurve(float exposure, float offset, float gamma) {
    const long double tenths = exposure / 10.0L;
    const long double gain = exposure < 0 ? std::exp(tenths * 3.15L) : 1 / std::exp(tenths * -3.15L);
    const long double exponent = 1.0L / gamma;
    return byteCurve([=](int32_t i) {
        const long double lit = clampTo(i / 255.0L * gain, 0.0L, 1.0L);
        const long double lifted = clampTo(offsetLight(lit, offset), 0.0L, 1.0L);
        return truncatedByte(static_cast<double>(std::pow(255 * lifted, exponent)));
    });
}

}  // namespace

Status exposure(ImageEngine& engine, float exposure, float offset, float gamma) {
    const ByteCurve curve = exposureCurve(clampTo(exposure, -20.0f, 20.0f), clampTo(offset, -0.5f, 0.5f),
                                          clampTo(gamma, 0.1f, 9.99f));
    return applyCurve(engine, ChannelTarget::RGB, curve);
}

namespace {

/// Sums of the colour bytes. They wrap at 32 bits, as do those of a picture too large for them.
struct ColourSums {
    uint32_t blue = 0, green = 0, red = 0;
};

ColourSums sumColours(const Pixel* first, const Pixel* last) {
    ColourSums sums;
    for (const Pixel* p = first; p != last; ++p) {
        sums.blue += p->blue;
        sums.green += p->green;
        sums.red += p->red;
    }
    return sums;
}

/// Brings a channel with `sum` over `count` pixels near `level`. A wrapped sum can make the divisor
/// 0, which leaves the channel as it is.
ByteCurve meanToLevel(uint32_t sum, int32_t count, int32_t level) {
    const int64_t divisor = int64_t{static_cast<int32_t>(sum)} / count + 1;
    return byteCurve([=](int32_t i) {
        if (divisor == 0) return int64_t{i};
        return clampTo<int64_t>(wrapMultiply(i, level) / divisor, 0, 255);
    });
}

}  // namespace

Status mediumTones(ImageEngine& engine, int32_t level) {
    if (engine.imageStatus()) return kStatusRefused;
    const ImageBuffer& image = *engine.buffer();
    const int32_t count = wrapMultiply(image.width, image.height);
    if (count == 0) return kStatusOk;
    Pixel* first = image.row(0);
    Pixel* last = first + image.bytes() / sizeof(Pixel);
    const ColourSums sums = sumColours(first, last);
    applyCurves(first, last,
                {meanToLevel(sums.blue, count, level), meanToLevel(sums.green, count, level),
                 meanToLevel(sums.red, count, level)});
    return kStatusOk;
}

}  // namespace krl
