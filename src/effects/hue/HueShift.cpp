#include "catalogue/Catalogue.h"
#include "effects/hue/HlsChange.h"
#include "krlimage/hue.h"

namespace krl {

/// Turns every hue, mixed in by percent. Beyond one turn the remainder counts; any density is allowed.
Status hueShift(ImageEngine& engine, int32_t hueValue, int32_t density) {
    const int32_t by = withinTurn(hueValue);
    return recolourByHls(engine, hueChange([=](int32_t hue) { return turnedHue(hue, by); }), density);
}

void describeHueShift(Catalogue& catalogue) {
    catalogue.add("krlImageHueShift", hueShift)
        .summary("Turns all hues around the colour circle.")
        .words("rotate, colour, color, turn")
        .integer("hueValue", {.from = 0, .to = 360, .example = 90}, "degrees to turn by")
        .integer("density", {.from = 0, .to = 150, .example = 100, .neutral = 0},
                 "percent of the new colour; beyond 100 overshoots")
        .inputFailure("HueShift input failure (Image)")
        .worksPerPixel()
        .failed("Failed Hue Shift function (Image)");
}

}  // namespace krl
