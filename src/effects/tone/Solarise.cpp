#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

/// Reverses the tones above 128.
Status solarise(ImageEngine& engine, ChannelTarget target) {
    return applyCurve(engine, target, byteCurve([](int32_t i) { return i <= 128 ? i : 255 - i; }));
}

void describeSolarise(Catalogue& catalogue) {
    catalogue.add("krlImageSolarise", solarise)
        .summary("Reverses the lighter half of the tones, as a print exposed twice.")
        .words("solarize, negative, darkroom")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Solarise input failure (Image)")
        .worksPerPixel()
        .failed("Failed Solarise function (Image)");
}

}  // namespace krl
