#include "catalogue/Catalogue.h"
#include "core/DoubleDouble.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// Lowers or lifts light `x` on 0..1. An offset of 0 would come back from its logarithm unchanged but
/// for the last bits, so light is left alone then.
DoubleDouble offsetLight(DoubleDouble x, double offset) {
    if (offset == 0) return x;
    if (offset < 0)
        return x + 1.0 - exponential((0.5 - exponential(DoubleDouble(12.0) / 10.0 * (1.0 - x))) * offset);
    return decimalLogarithm(power(10.0, 255.0 * x / 180.0) + DoubleDouble(20.0) * offset) * 180.0 / 255.0;
}

/// out = (255 * offsetLight(in * e ^ (0.315 * exposure))) ^ (1 / gamma), light on 0..1. Twice the digits of a
/// double keep rounding from tipping a byte.
ByteCurve exposureCurve(double exposure, double offset, double gamma) {
    const DoubleDouble gain = exponential(DoubleDouble(exposure) * 315.0 / 1000.0);
    const DoubleDouble exponent = DoubleDouble(1.0) / gamma;
    return byteCurve([=](int32_t i) {
        const DoubleDouble lit = clampTo<DoubleDouble>(DoubleDouble(i) / 255.0 * gain, 0.0, 1.0);
        const DoubleDouble lifted = clampTo<DoubleDouble>(offsetLight(lit, offset), 0.0, 1.0);
        return truncatedByte(power(255.0 * lifted, exponent).high);
    });
}

}  // namespace

/// Scales light, lifts or lowers it, and bends it. The three are limited to -20..20, -0.5..0.5 and 0.1..9.99.
Status exposure(ImageEngine& engine, float exposure, float offset, float gamma) {
    const ByteCurve curve = exposureCurve(clampTo(exposure, -20.0f, 20.0f), clampTo(offset, -0.5f, 0.5f),
                                          clampTo(gamma, 0.1f, 9.99f));
    return applyCurve(engine, ChannelTarget::RGB, curve);
}

void describeExposure(Catalogue& catalogue) {
    catalogue.add("krlImageExposure", exposure)
        .summary("Scales light as a longer or shorter exposure would.")
        .words("stops, light, brighten, darken, overexposed, underexposed")
        .real("exposure", {.from = -20, .to = 20, .example = 0.8, .least = -20, .most = 20},
              "each 2.2 doubles the light; 0.0 changes nothing")
        .real("offset", {.from = -0.5, .to = 0.5, .example = 0.02, .least = -0.5, .most = 0.5},
              "lifts or lowers, shadows most")
        .real("gamma", {.from = 0.8, .to = 1.3, .example = 1.0, .least = 0.1, .most = 9.99},
              "bend of the result, as in krlImageGamma; 1.0 is none")
        .inputFailure("Exposure input failure (Image)")
        .worksPerPixel()
        .failed("Failed Exposure function (Image)");
}

}  // namespace krl
