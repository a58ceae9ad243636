#include "effects/composite/GleamStages.h"

#include <algorithm>

#include "core/Bands.h"
#include "kernels/blend/BlendFunction.h"
#include "kernels/blend/BlockPixels.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/LevelsStretch.h"
#include "kernels/ramp/Curve.h"

namespace krl {

ByteCurve gleamGain(float brightness) {
    const auto room = static_cast<float>(1.0 - clampUnit(brightness));
    ByteCurve gain{};
    for (int32_t i = 0; i < 256; ++i)
        gain[static_cast<size_t>(i)] = room == 0 ? 255 : truncatedByte(i / 255.0 / room * 255);
    return gain;
}

namespace {

/// What each byte of the light becomes. Light of a list with one colour or none is grey here.
ColourCurves lightCurves(const GleamLook& look, const LookupTables& tables) {
    const ByteCurve gain = gleamGain(look.brightness);
    if (look.colourMethod == GleamColour::FromImage || look.colorList.size() != 1) return {gain, gain, gain};
    const auto tinted = [&](int32_t channel) {
        const double share = tables.unitFromByte[clampByte(look.colorList[0].channel(channel))];
        return byteCurve([&](int32_t i) { return truncatedByte(share * gain[static_cast<size_t>(i)]); });
    };
    return {tinted(0), tinted(1), tinted(2)};
}

/// What is left of each alpha at an opacity of `opacity`.
ByteCurve alphaAtOpacity(int32_t opacity) {
    return byteCurve([=](int32_t alpha) { return clampByte(alpha - (255 - opacity)); });
}

}  // namespace

GleamStages::GleamStages(const ImageEngine& engine, const SecondImage& foreground, const GleamLook& look)
    : engine_(engine), foreground_(foreground), look_(look) {
    look_.black = clampByte(look.black);
    look_.white = clampByte(look.white);
    look_.compositeTransparency = clampByte(look.compositeTransparency);
    look_.transparency = clampByte(look.transparency);
}

Status GleamStages::extractLight(Scratch<Pixel>& light) const {
    const ByteCurve levels = byteCurve(LevelsStretch(look_.black, look_.white));
    std::fill(light.begin() + pixelsBeside(engine_, foreground_), light.end(), Pixel{0, 0, 0, 0});
    return forEachSpanBeside(engine_, foreground_, [&](Pixel* pixels, size_t count, const Pixel* front) {
        Pixel* out = light.data() + (pixels - engine_.buffer()->row(0));
        forEachBatch(count, [&](size_t start, size_t size) {
            Pixel *first = out + start, *last = first + size;
            std::copy_n(front + start, size, first);
            if (colourises()) takeMeans(first, last);
            applyCurveTo<0, 1, 2>(first, last, levels);
        });
    });
}

Status GleamStages::colourise(Scratch<Pixel>& light) const {
    const ColourCurve curve({look_.colorList.begin(), look_.colorList.end()}, 255);
    return forEachSpan(engine_, [&](Pixel* first, Pixel* last) {
        Pixel* pixels = light.data() + (first - engine_.buffer()->row(0));
        for (ptrdiff_t i = 0; i < last - first; ++i) {
            const Pixel p = pixels[i];
            const auto luma = static_cast<float>(lumaOf(p.red, p.green, p.blue));
            const auto t = static_cast<float>(luma * 0.00392156862745098);
            pixels[i] = {clampByte(curve.valueAt(0, t)), clampByte(curve.valueAt(1, t)),
                         clampByte(curve.valueAt(2, t)), p.alpha};
        }
    });
}

Status GleamStages::layBoth(const Scratch<Pixel>& light) const {
    const ColourCurves colours = lightCurves(look_, engine_.tables());
    const ByteCurve frontAlpha = alphaAtOpacity(look_.compositeTransparency);
    const ByteCurve lightAlpha = alphaAtOpacity(look_.transparency);
    const BlendFunction layFront = shiftBlendSpan(look_.compositeBlendMethod);
    const BlendFunction layLight = shiftBlendSpan(look_.blendMethod);
    return forEachSpanBeside(engine_, foreground_, [&](Pixel* pixels, size_t count, const Pixel* front) {
        const Pixel* shine = light.data() + (pixels - engine_.buffer()->row(0));
        forEachBatch(count, [&](size_t start, size_t size) {
            Pixel faded[kBatchPixels];
            Pixel* last = faded + size;
            std::copy_n(front + start, size, faded);
            applyCurveTo<3>(faded, last, frontAlpha);
            layFront(pixels + start, faded, size, engine_.tables());
            std::copy_n(shine + start, size, faded);
            applyCurves(faded, last, colours);
            applyCurveTo<3>(faded, last, lightAlpha);
            layLight(pixels + start, faded, size, engine_.tables());
        });
    });
}

Status GleamStages::finish(Scratch<Pixel>& light) const {
    if (hasRamp())
        if (Status status = colourise(light)) return status;
    return layBoth(light);
}

}  // namespace krl
