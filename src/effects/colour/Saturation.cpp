#include "catalogue/Catalogue.h"
#include "kernels/colour/HsvLanes.h"
#include "krlimage/colour.h"

namespace krl {

/// Multiplies the saturation of every pixel and limits it to 0..1. Any factor is allowed.
Status saturation(ImageEngine& engine, float saturation) {
    return recolourByHsv(engine, [=](float& pixelSaturation, float&) {
        pixelSaturation = clampTo(pixelSaturation * saturation, 0.0f, 1.0f);
    });
}

void describeSaturation(Catalogue& catalogue) {
    catalogue.add("krlImageSaturation", saturation)
        .summary("Strengthens or weakens colour, keeping hue and brightest channel.")
        .words("vivid, vibrance, muted, colourful, colorful, dull")
        .real("saturation", {.from = 0, .to = 3, .example = 1.5},
              "factor; 1.0 keeps, 0.0 leaves the grey of the brightest channel")
        .inputFailure("Saturation input failure (Image)")
        .worksPerPixel()
        .failed("Failed Saturation function (Image)");
}

}  // namespace krl
