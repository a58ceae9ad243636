#include "kernels/curve/ByteCurve.h"

#include "kernels/curve/SaturatedSteps.h"

namespace krl {

Status runCurves(const ImageEngine& engine, const ChannelCurves& curves, const SpanWork& lookUp) {
    const auto steps = SaturatedSteps::of(curves);
    if (!steps) return runSpans(engine, lookUp, &curves);
    return runSpans(
        engine, [&](Pixel* first, Pixel* last) { steps->apply(first, last); }, &curves);
}

Status applyCurve(ImageEngine& engine, ChannelTarget target, const ByteCurve& curve) {
    return target == ChannelTarget::RGB ? applyCurveTo<0, 1, 2>(engine, curve)
                                        : applyCurveTo<3>(engine, curve);
}

void applyCurves(Pixel* first, Pixel* last, const ColourCurves& curves) {
    Pixel* rest = lookUpWide(first, last, {{curves.blue, 1}, {curves.green, 2}, {curves.red, 4}});
    for (Pixel* p = rest; p != last; ++p) {
        p->blue = curves.blue[p->blue];
        p->green = curves.green[p->green];
        p->red = curves.red[p->red];
    }
}

Status applyCurves(ImageEngine& engine, const ColourCurves& curves) {
    return runCurves(engine, curves.byChannel(),
                     [&](Pixel* first, Pixel* last) { applyCurves(first, last, curves); });
}

Status shiftSaturated(ImageEngine& engine, Pixel step, bool subtract) {
    const auto shifted = [=](uint8_t by) {
        return byteCurve([=](int32_t i) { return clampByte(subtract ? i - by : i + by); });
    };
    const ByteCurve blue = shifted(step.blue), green = shifted(step.green), red = shifted(step.red),
                    alpha = shifted(step.alpha);
    const auto steps = SaturatedSteps::of({&blue, &green, &red, &alpha});
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) { steps->apply(first, last); });
}

}  // namespace krl
