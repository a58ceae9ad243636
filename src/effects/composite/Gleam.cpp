#include "effects/composite/Gleam.h"

#include <algorithm>

#include "core/Bands.h"
#include "kernels/blend/BlockPixels.h"
#include "kernels/blend/BlendFunction.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/colour/Grey.h"
#include "kernels/ramp/Curve.h"

namespace krl {

ByteCurve gleamLevels(int32_t black, int32_t white) {
    const auto slope = static_cast<float>(256.0 / (white - black + 1));
    ByteCurve levels{};
    for (int32_t i = 0; i < 256; ++i) {
        const auto stretched = [&] {
            return static_cast<uint8_t>(truncate((i - black) * static_cast<double>(slope)));
        };
        levels[static_cast<size_t>(i)] = i > white ? 255 : i < black ? 0 : stretched();
    }
    return levels;
}

ByteCurve gleamGain(float brightness) {
    const auto room = static_cast<float>(1.0 - clampUnit(brightness));
    ByteCurve gain{};
    for (int32_t i = 0; i < 256; ++i)
        gain[static_cast<size_t>(i)] = room == 0 ? 255 : truncatedByte(i / 255.0 / room * 255);
    return gain;
}

namespace {

/// What each byte of the light becomes. Light that takes one colour, or none, is grey by then.
ColourCurves lightCurves(const GleamSettings& settings, const LookupTables& tables) {
    const ByteCurve gain = gleamGain(settings.brightness);
    if (settings.colourMethod == GleamColour::FromImage || settings.colorList.size() != 1)
        return {gain, gain, gain};
    const auto tinted = [&](int32_t channel) {
        const double share = tables.unitFromByte[clampByte(settings.colorList[0].channel(channel))];
        return byteCurve([&](int32_t i) { return truncatedByte(share * gain[static_cast<size_t>(i)]); });
    };
    return {tinted(0), tinted(1), tinted(2)};
}

/// What is left of each alpha at an opacity of `opacity`.
ByteCurve alphaAtOpacity(int32_t opacity) {
    return byteCurve([=](int32_t alpha) { return clampByte(alpha - (255 - opacity)); });
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
    const ByteCurve levels = gleamLevels(settings_.blackPoint, settings_.whitePoint);
    std::fill(light.begin() + pixelsBeside(*engine_.buffer(), foreground_), light.end(), Pixel{0, 0, 0, 0});
    return forEachSpanBeside(engine_, foreground_, [&](Pixel* pixels, size_t count, const Pixel* front) {
        Pixel* out = light.data() + (pixels - engine_.buffer()->row(0));
        forEachBatch(count, [&](size_t start, size_t chunk) {
            Pixel *first = out + start, *last = first + chunk;
            std::copy_n(front + start, chunk, first);
            if (colourises()) takeMeans(first, last);
            applyCurveTo<0, 1, 2>(first, last, levels);
        });
    });
}

Status GleamStages::colourise(Scratch<Pixel>& light) const {
    const ColourCurve curve({settings_.colorList.begin(), settings_.colorList.end()}, 255);
    const LookupTables& tables = engine_.tables();
    return forEachSpan(engine_, [&](Pixel* first, Pixel* last) {
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
    const ColourCurves colours = lightCurves(settings_, engine_.tables());
    const ByteCurve frontAlpha = alphaAtOpacity(settings_.compositeTransparency);
    const ByteCurve lightAlpha = alphaAtOpacity(settings_.transparency);
    const BlendFunction layFront = shiftBlendSpan(settings_.compositeBlendMethod);
    const BlendFunction layLight = shiftBlendSpan(settings_.blendMethod);
    return forEachSpanBeside(engine_, foreground_, [&](Pixel* pixels, size_t count, const Pixel* front) {
        const Pixel* shine = light.data() + (pixels - engine_.buffer()->row(0));
        forEachBatch(count, [&](size_t start, size_t chunk) {
            Pixel faded[kBatchPixels];
            Pixel* last = faded + chunk;
            std::copy_n(front + start, chunk, faded);
            applyCurveTo<3>(faded, last, frontAlpha);
            layFront(pixels + start, faded, chunk, engine_.tables());
            std::copy_n(shine + start, chunk, faded);
            applyCurves(faded, last, colours);
            applyCurveTo<3>(faded, last, lightAlpha);
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
