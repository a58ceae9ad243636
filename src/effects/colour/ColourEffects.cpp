#include "effects/colour/ColourEffects.h"

#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "effects/colour/BlackBody.h"
#include "kernels/colour/ColourLanes.h"
#include "kernels/colour/HsvLanes.h"
#include "kernels/curve/ByteCurve.h"

namespace krl {

Status ambientLight(ImageEngine& engine, Colour myColor, int32_t intensity) {
    const int32_t lift = clampTo(intensity, 0, 255);
    const auto missing = [=](uint8_t light) { return clampByte(255 - light - lift); };
    const Pixel loss = {missing(myColor.blue()), missing(myColor.green()), missing(myColor.red()), 0};
    if (engine.useWidePath()) return shiftSaturated(engine, loss, true);
    const auto dimmed = [](uint8_t by) { return byteCurve([=](int32_t i) { return clampByte(i - by); }); };
    return applyCurves(engine, {dimmed(loss.blue), dimmed(loss.green), dimmed(loss.red)});
}

Status colourBalance(ImageEngine& engine, float redVal, float greenVal, float blueVal) {
    const auto scaled = [](float by) {
        return byteCurve([=](int32_t i) { return truncatedByte(i * double(by)); });
    };
    return applyCurves(engine, {scaled(blueVal), scaled(greenVal), scaled(redVal)});
}

Status colourTemperature(ImageEngine& engine, float tempShift) {
    const LightColour light = blackBodyColour(tempShift);
    // Truncated before it is limited: a product beyond all integers turns black, not white.
    const auto lit = [](double by) {
        return byteCurve([=](int32_t i) { return clampByte(truncate(i * by)); });
    };
    return applyCurves(engine, {lit(light.blue), lit(light.green), lit(light.red)});
}

Status desaturate(ImageEngine& engine) { return forEachSpan(engine, takeMeans); }

Status sepia(ImageEngine& engine) {
    if (Status state = engine.imageStatus()) return state;
    const auto tinted = [](const int32_t(&table)[256]) {
        return byteCurve([&](int32_t mean) { return table[mean]; });
    };
    const LookupTables& tables = engine.tables();
    const ColourCurves tints = {tinted(tables.sepiaBlue), tinted(tables.sepiaGreen), tinted(tables.sepiaRed)};
    return recolourByMean(engine, [&](Pixel* first, Pixel* last) { applyCurves(first, last, tints); });
}

namespace {

/// Moves each lane of `from` towards `to` by `opacity` of 256; bits above the low byte are no matter.
KRL_VECTOR_LEVELS void mixLanes(int32_t (&from)[kBlockPixels], const int32_t (&to)[kBlockPixels],
                                int32_t opacity) {
    for (size_t i = 0; i < kBlockPixels; ++i)
        from[i] = wrapAdd(from[i], wrapMultiply(to[i] - from[i], opacity) >> 8);
}

}  // namespace

namespace {

/// Weights of a grey, and what their sum is divided by.
struct GreyWeights {
    float red, green, blue;
    double divisor;
};

KRL_VECTOR_LEVELS void weigh(const ColourLanes& colours, const GreyWeights& weights,
                             int32_t (&greys)[kBlockPixels]) {
    for (size_t i = 0; i < kBlockPixels; ++i) {
        const float green = float(colours.green[i]) * weights.green;
        const float blue = float(colours.blue[i]) * weights.blue;
        const float red = float(colours.red[i]) * weights.red;
        const int32_t sum = truncate(double(green) + blue + red);
        greys[i] = clampTo(truncate(sum / weights.divisor), 0, 255);
    }
}

}  // namespace

Status desaturatePro(ImageEngine& engine, float red, float green, float blue, int32_t opacity,
                     bool equalise) {
    const auto sum = static_cast<float>(double(green) + blue + red);
    const GreyWeights weights = {red, green, blue, equalise && sum != 0.0f ? sum : 1.0};
    return forEachLaneBatch(engine, [=](ColourLanes& colours) {
        int32_t greys[kBlockPixels];
        weigh(colours, weights, greys);
        mixLanes(colours.blue, greys, opacity);
        mixLanes(colours.green, greys, opacity);
        mixLanes(colours.red, greys, opacity);
    });
}

namespace {

using Lanes = int32_t (ColourLanes::*)[kBlockPixels];

/// Where each channel comes from.
struct ChannelSources {
    Lanes red, green, blue;
};

ChannelSources channelSources(ChannelOrder order) {
    constexpr Lanes red = &ColourLanes::red, green = &ColourLanes::green, blue = &ColourLanes::blue;
    switch (order) {
        case ChannelOrder::RBG:
            return {red, blue, green};
        case ChannelOrder::GBR:
            return {green, blue, red};
        case ChannelOrder::GRB:
            return {green, red, blue};
        case ChannelOrder::BRG:
            return {blue, red, green};
        case ChannelOrder::BGR:
            return {blue, green, red};
        case ChannelOrder::RGB:
            break;
    }
    return {red, green, blue};
}

}  // namespace

Status rgbChannelSwap(ImageEngine& engine, ChannelOrder channel, int32_t opacity) {
    if (channel == ChannelOrder::RGB) return engine.imageStatus();
    const ChannelSources sources = channelSources(channel);
    return forEachLaneBatch(engine, [=](ColourLanes& colours) {
        const ColourLanes before = colours;
        mixLanes(colours.red, before.*sources.red, opacity);
        mixLanes(colours.green, before.*sources.green, opacity);
        mixLanes(colours.blue, before.*sources.blue, opacity);
    });
}

Status saturation(ImageEngine& engine, float saturation) {
    return recolourByHsv(engine, [=](float& pixelSaturation, float&) {
        pixelSaturation = clampTo(pixelSaturation * saturation, 0.0f, 1.0f);
    });
}

}  // namespace krl
