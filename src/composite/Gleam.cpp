#include "composite/Gleam.h"

#include <algorithm>

#include "blur/TentBlur.h"
#include "composite/BlendRun.h"
#include "composite/Chunks.h"
#include "core/Bands.h"
#include "generate/Curve.h"

namespace krl {

ByteTable gleamLevels(int32_t black, int32_t white) {
    const auto slope = static_cast<float>(256.0 / (white - black + 1));
    ByteTable levels{};
    for (int32_t i = 0; i < 256; ++i) {
        const auto stretched = [&] {
            return static_cast<uint8_t>(truncate((i - black) * static_cast<double>(slope)));
        };
        levels[static_cast<size_t>(i)] = i > white ? 255 : i < black ? 0 : stretched();
    }
    return levels;
}

ByteTable gleamGain(float brightness) {
    const auto room = static_cast<float>(1.0 - clampUnit(brightness));
    ByteTable gain{};
    for (int32_t i = 0; i < 256; ++i)
        gain[static_cast<size_t>(i)] = room == 0 ? 255 : truncatedByte(i / 255.0 / room * 255);
    return gain;
}

namespace {

/// What each byte of the light becomes, channel by channel, and whether byte 0 stands for all three.
struct LightColours {
    std::array<ByteTable, 3> channels;
    bool fromBlue = false;

    LightColours(const GleamSettings& settings, const LookupTables& tables) {
        const ByteTable gain = gleamGain(settings.brightness);
        channels.fill(gain);
        if (settings.colourMethod == GleamColour::FromImage || settings.colorList.size() >= 2) return;
        fromBlue = true;
        if (settings.colorList.empty()) return;
        for (size_t c = 0; c < 3; ++c) {
            const uint8_t colour = clampByte(settings.colorList[0].channel(static_cast<int32_t>(c)));
            for (size_t i = 0; i < 256; ++i)
                channels[c][i] = truncatedByte(static_cast<double>(tables.unitFromByte[colour]) * gain[i]);
        }
    }

    Pixel operator()(Pixel light, uint8_t alpha) const {
        return {channels[0][light.blue], channels[1][fromBlue ? light.blue : light.green],
                channels[2][fromBlue ? light.blue : light.red], alpha};
    }
};

/// What is left of each alpha at an opacity of `opacity`.
ByteTable alphaAtOpacity(int32_t opacity) {
    ByteTable left{};
    for (int32_t alpha = 0; alpha < 256; ++alpha)
        left[static_cast<size_t>(alpha)] = clampByte(alpha - (255 - opacity));
    return left;
}

}  // namespace

GleamStages::GleamStages(const ImageEngine& engine, const SecondImage& foreground,
                         const GleamSettings& settings)
    : engine_(engine), foreground_(foreground), settings_(settings) {
    settings_.blackPoint = clampByte(settings.blackPoint);
    settings_.whitePoint = clampByte(settings.whitePoint);
    settings_.compositeTransparency = clampByte(settings.compositeTransparency);
    settings_.transparency = clampByte(settings.transparency);
}

Status GleamStages::extractLight(Scratch<Pixel>& light) const {
    const ByteTable levels = gleamLevels(settings_.blackPoint, settings_.whitePoint);
    const LookupTables& tables = engine_.tables();
    std::fill(light.begin(), light.end(), Pixel{0, 0, 0, 0});
    const auto extract = [&](auto perPixel) {
        return forEachRunBeside(engine_, foreground_, [&](Pixel* first, size_t count, const Pixel* front) {
            Pixel* out = light.data() + (first - engine_.buffer()->row(0));
            for (size_t i = 0; i < count; ++i) out[i] = perPixel(front[i]);
        });
    };
    if (colourises())
        return extract([&](Pixel p) -> Pixel {
            const uint8_t level = levels[static_cast<size_t>(tables.meanOf3[p.blue + p.green + p.red])];
            return {level, level, level, p.alpha};
        });
    return extract([&](Pixel p) -> Pixel {
        return {levels[p.blue], levels[p.green], levels[p.red], p.alpha};
    });
}

Status GleamStages::colourise(Scratch<Pixel>& light) const {
    const ColourCurve curve({settings_.colorList.begin(), settings_.colorList.end()}, 255);
    const LookupTables& tables = engine_.tables();
    return forEachPixelRun(engine_, [&](Pixel* first, Pixel* last) {
        Pixel* pixels = light.data() + (first - engine_.buffer()->row(0));
        for (ptrdiff_t i = 0; i < last - first; ++i) {
            const Pixel p = pixels[i];
            const auto luma = static_cast<float>(double(tables.lumaBlue[p.blue]) + tables.lumaGreen[p.green] +
                                                 tables.lumaRed[p.red]);
            const auto t = static_cast<float>(luma * 0.00392156862745098);
            pixels[i] = {clampByte(curve.valueAt(0, t)), clampByte(curve.valueAt(1, t)),
                         clampByte(curve.valueAt(2, t)), p.alpha};
        }
    });
}

Status GleamStages::layBoth(const Scratch<Pixel>& light) const {
    const LightColours colours(settings_, engine_.tables());
    const ByteTable frontAlpha = alphaAtOpacity(settings_.compositeTransparency);
    const ByteTable lightAlpha = alphaAtOpacity(settings_.transparency);
    const BlendRun layFront = shiftBlendRun(settings_.compositeBlendMethod);
    const BlendRun layLight = shiftBlendRun(settings_.blendMethod);
    return forEachRunBeside(engine_, foreground_, [&](Pixel* pixels, size_t count, const Pixel* front) {
        const Pixel* shine = light.data() + (pixels - engine_.buffer()->row(0));
        forEachChunk(count, [&](size_t start, size_t chunk) {
            Pixel faded[kChunkPixels] = {};
            for (size_t i = 0; i < chunk; ++i) {
                const Pixel p = front[start + i];
                faded[i] = {p.blue, p.green, p.red, frontAlpha[p.alpha]};
            }
            layFront(pixels + start, faded, chunk, engine_.tables());
            for (size_t i = 0; i < chunk; ++i) {
                const Pixel shining = shine[start + i];
                faded[i] = colours(shining, lightAlpha[shining.alpha]);
            }
            layLight(pixels + start, faded, chunk, engine_.tables());
        });
    });
}

Status GleamStages::finish(Scratch<Pixel>& light) const {
    if (hasRamp())
        if (Status status = colourise(light)) return status;
    return layBoth(light);
}

Status gleamBlurComposite(ImageEngine& engine, const SecondImage& foreground, BlendMode compositeBlendMethod,
                          int32_t compositeTransparency, int32_t blackPoint, int32_t whitePoint, int32_t blur,
                          BlendMode blendMethod, float brightness, int32_t transparency,
                          std::span<const CurveKey> colorList, GleamColour colourMethod) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoImage;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const ImageBuffer& image = *engine.buffer();
    const GleamStages stages(engine, foreground,
                             {compositeBlendMethod, compositeTransparency, blackPoint, whitePoint,
                              blendMethod, brightness, transparency, colorList, colourMethod});
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = stages.extractLight(light)) return status;
    if (blur > 0) TentBlur(engine.getThreadCount()).blurRGBA(light.data(), image.height, image.width, blur);
    return stages.finish(light);
}

}  // namespace krl
