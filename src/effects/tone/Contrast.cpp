#include "kernels/curve/Contrast.h"

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

/// Scales the distance of every byte from 127, in integers. Any factor is allowed: beyond all integers its
/// multiples wrap.
Status contrast(ImageEngine& engine, float contrastFloat, ChannelTarget target) {
    return applyCurve(engine, target, contrastCurve(contrastFloat));
}

void describeContrast(Catalogue& catalogue) {
    catalogue.add("krlImageContrast", contrast)
        .summary("Spreads tones away from mid grey, or draws them together.")
        .words("punch, flat, harder, softer")
        .real("contrastFloat", {.from = -2, .to = 4, .example = 1.4, .neutral = 1},
              "factor on the distance from level 127; 1.0 changes nothing, negative inverts")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Contrast input failure (Image)")
        .worksPerPixel()
        .failed("Failed Contrast function (Image)");
}

}  // namespace krl
