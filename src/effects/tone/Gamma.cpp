#include <cmath>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/ExactFunctions.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

/// Raises every byte, on its own scale of 0..255, to the power 1 / gamma. Any gamma is allowed; the power and
/// the result are single precision.
Status gamma(ImageEngine& engine, float gamma, ChannelTarget target) {
    const auto exponent = static_cast<float>(1.0 / gamma);
    return applyCurve(engine, target, byteCurve([=](int32_t i) {
                          return truncatedByte(static_cast<float>(exactPower(double(i), double(exponent))));
                      }));
}

void describeGamma(Catalogue& catalogue) {
    catalogue.add("krlImageGamma", gamma)
        .summary("Raises every level, on its scale of 0..255, to the power 1 / gamma.")
        .words("mid tones, midtones, curve, brighten, darken")
        .real("gamma", {.from = 0.8, .to = 1.3, .example = 1.05, .neutral = 1},
              "1.0 changes nothing, above darkens and below lightens; small steps go far, as nothing "
              "is scaled back")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Gamma input failure (Image)")
        .worksPerPixel()
        .failed("Failed Gamma function (Image)");
}

}  // namespace krl
