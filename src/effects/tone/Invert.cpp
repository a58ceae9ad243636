#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

/// Complements every byte of the target.
Status invert(ImageEngine& engine, ChannelTarget target) {
    return applyCurve(engine, target, byteCurve([](int32_t i) { return 255 - i; }));
}

void describeInvert(Catalogue& catalogue) {
    catalogue.add("krlImageInvert", invert)
        .summary("Turns every level into its opposite, as in a negative.")
        .words("negative, opposite, reverse")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Invert input failure (Image)")
        .worksPerPixel()
        .failed("Failed Invert function (Image)");
}

}  // namespace krl
