#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/EqualBands.h"
#include "krlimage/tone.h"

namespace krl {

/// Drops every byte to the lower bound of its band, and those of the highest band to 255. From 255 bands on
/// nothing changes.
Status posterise(ImageEngine& engine, int32_t level, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    return applyCurve(engine, target, byteCurve(EqualBands(level, 255)));
}

void describePosterise(Catalogue& catalogue) {
    catalogue.add("krlImagePosterise", posterise)
        .summary("Reduces tones to a few flat steps.")
        .words("posterize, flat, steps, comic, cartoon, poster")
        .integer("level", {.from = 1, .to = 32, .example = 4, .neutral = 0},
                 "number of steps; 0 changes nothing")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Posterise input failure (Image)")
        .worksPerPixel()
        .failed("Failed Posterise function (Image)");
}

}  // namespace krl
