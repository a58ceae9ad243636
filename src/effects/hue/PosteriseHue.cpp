#include "catalogue/Catalogue.h"
#include "effects/hue/HlsChange.h"
#include "kernels/curve/EqualBands.h"
#include "krlimage/hue.h"

namespace krl {

/// Brings every hue to the lower bound of its band, and then turns it. From 360 bands on it only turns.
Status posteriseHue(ImageEngine& engine, int32_t level, int32_t rotation) {
    if (Status state = engine.imageStatus()) return state;
    const EqualBands banded(level, 360);
    return recolourByHls(engine, hueChange([&](int32_t hue) { return turnedHue(banded(hue), rotation); }));
}

void describePosteriseHue(Catalogue& catalogue) {
    catalogue.add("krlImagePosteriseHue", posteriseHue)
        .summary("Reduces hues to a few, and turns them; greys stay.")
        .words("posterize, flat, steps, reduce colours")
        .integer("level", {.from = 1, .to = 36, .example = 6}, "number of hues; 0 keeps them all")
        .integer("rotation", {.from = 0, .to = 360, .example = 30}, "degrees to turn the result by")
        .inputFailure("Posterise Hue input failure (Image)")
        .worksPerPixel()
        .failed("Failed Posterise Hue function (Image)");
}

}  // namespace krl
