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
    const auto up = [](uint8_t byte, uint8_t by) {
        const auto sum = static_cast<uint8_t>(byte + by);
        return sum < byte ? uint8_t{255} : sum;
    };
    const auto down = [](uint8_t byte, uint8_t by) {
        return byte < by ? uint8_t{0} : static_cast<uint8_t>(byte - by);
    };
    const auto shift = [&](auto move) {
        return forEachPixel(engine, [=](Pixel& p) {
            p = {move(p.blue, step.blue), move(p.green, step.green), move(p.red, step.red),
                 move(p.alpha, step.alpha)};
        });
    };
    return subtract ? shift(down) : shift(up);
}

}  // namespace krl
