#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/LevelsStretch.h"
#include "krlimage/tone.h"

namespace krl {

/// Spreads the tones between two levels over the whole scale. Levels are limited to 0..255; where they cross,
/// the upper one decides.
Status superContrast(ImageEngine& engine, int32_t low, int32_t high, ChannelTarget target) {
    const int32_t black = clampTo(low, 0, 255), white = clampTo(high, 0, 255);
    return applyCurve(engine, target, byteCurve(LevelsStretch(black, white)));
}

void describeSuperContrast(Catalogue& catalogue) {
    catalogue.add("krlImageSuperContrast", superContrast)
        .summary("Spreads the tones between two levels over the whole scale and clips the rest.")
        .words("clip, stretch, punch, black point, white point")
        .integer("low", {.from = 0, .to = 255, .example = 40, .least = 0, .most = 255},
                 "level that becomes black")
        .integer("high", {.from = 0, .to = 255, .example = 200, .least = 0, .most = 255},
                 "level that becomes white")
        .symbol("colourOrAlpha", colourOrAlpha(),
                refused("Super Contrast invalid colourOrAlpha input (Image)"), kTargetMeaning)
        .inputFailure("Super Contrast input failure (Image)")
        .worksPerPixel()
        .failed("Failed Super Contrast function (Image)");
}

}  // namespace krl
