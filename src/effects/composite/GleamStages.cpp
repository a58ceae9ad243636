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

/// What each byte of the light becomes. Light that is coloured by a list is grey here, so that its luma is a
/// matter of one byte.
ColourCurves lightCurves(const GleamLook& look, const LookupTables& tables) {
    const ByteCurve gain = gleamGain(look.brightness);
    if (look.colourMethod == GleamColour::FromImage || look.colorList.empty()) return {gain, gain, gain};
    if (look.colorList.size() >= 2) {
        const ColourCurve ramp({look.colorList.begin(), look.colorList.end()}, 255);
        const auto ramped = [&](size_t channel) {
            return byteCurve([&](int32_t i) {
                const auto luma = static_cast<float>(lumaOf(i, i, i));
                const auto t = static_cast<float>(luma * 0.00392156862745098);
                return gain[clampByte(ramp.valueAt(channel, t))];
            });
        };
        return {ramped(0), ramped(1), ramped(2)};
    }
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

Status GleamStages::finish(const Scratch<Pixel>& light) const {
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

}  // namespace krl
