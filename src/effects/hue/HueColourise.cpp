#include "catalogue/Catalogue.h"
#include "effects/hue/HlsChange.h"
#include "krlimage/hue.h"

namespace krl {

/// Gives every colour one hue, mixed in by percent. Beyond one turn the remainder counts; any density is
/// allowed.
Status hueColourise(ImageEngine& engine, int32_t hueValue, int32_t density) {
    return recolourByHls(engine, hueChange([=](int32_t) { return withinTurn(hueValue); }), density);
}

void describeHueColourise(Catalogue& catalogue) {
    catalogue.add("krlImageHueColourise", hueColourise)
        .summary("Gives every colour one hue, keeping its lightness and saturation.")
        .words("colorize, tint, monochrome, duotone")
        .integer("hueValue", {.from = 0, .to = 360, .example = 210},
                 "hue in degrees: 0 red, 120 green, 240 blue")
        .integer("density", {.from = 0, .to = 150, .example = 100, .neutral = 0},
                 "percent of the new colour; beyond 100 overshoots")
        .inputFailure("Hue Colourise input failure (Image)")
        .worksPerPixel()
        .failed("Failed Hue Colourise function (Image)");
}

}  // namespace krl
