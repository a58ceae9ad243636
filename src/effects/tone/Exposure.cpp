#include <cmath>

#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// Lowers or lifts light `x` on 0..1. An offset of 0 would come back from its logarithm unchanged but
/// for the last bits, so light is left alone then and no platform's arithmetic can tip a byte.
long double offsetLight(long double x, float offset) {
    if (offset == 0) return x;
    if (offset < 0) return x + 1 - std::exp((0.5L - std::exp(1.2L * (1 - x))) * offset);
    return std::log10(std::pow(10.0L, 255 * x / 180) + 20.0L * offset) * 180 / 255;
}

/// out = (255 * offsetLight(in * e ^ (0.315 * exposure))) ^ (1 / gamma), light on 0..1.
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
