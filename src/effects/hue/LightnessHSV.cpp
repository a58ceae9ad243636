#include "catalogue/Catalogue.h"
#include "core/Numbers.h"
#include "kernels/colour/HsvLanes.h"
#include "krlimage/hue.h"

namespace krl {

/// Adds `lightness - 1` to the value of every pixel; above 1 saturation fades by as much. Any number is
/// allowed.
Status lightnessHSV(ImageEngine& engine, float lightness) {
    const auto lift = static_cast<float>(lightness - 1.0);
    const double fade = lift > 0 ? 1.0 - lift : 1.0;
    return recolourByHsv(engine, [=](float& saturation, float& value) {
        saturation = clampTo(static_cast<float>(fade * saturation), 0.0f, 1.0f);
        value = clampTo(value + lift, 0.0f, 1.0f);
    });
}

void describeLightnessHSV(Catalogue& catalogue) {
    catalogue.add("krlImageLightnessHSV", lightnessHSV)
        .summary("Lightens or darkens; what is lightened loses saturation too.")
        .words("brighten, darken, lightness, value")
        .real("lightness", {.from = 0, .to = 2, .example = 1.25, .neutral = 1},
              "1.0 keeps, 2.0 gives white, 0.0 black")
        .inputFailure("Lightness HSV input failure (Image)")
        .worksPerPixel()
        .failed("Failed Lightness HSV function (Image)");
}

}  // namespace krl
