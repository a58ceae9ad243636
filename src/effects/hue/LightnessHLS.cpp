#include "catalogue/Catalogue.h"
#include "core/Numbers.h"
#include "effects/hue/HlsChange.h"
#include "krlimage/hue.h"

namespace krl {

/// Multiplies the lightness of every pixel and limits it to 0..360. Any factor is allowed.
Status lightnessHLS(ImageEngine& engine, float lightness) {
    HlsChange change = unchangedHls();
    for (int32_t& level : change.lightnesses) level = clampTo(truncate(level * double(lightness)), 0, 360);
    return recolourByHls(engine, change);
}

void describeLightnessHLS(Catalogue& catalogue) {
    catalogue.add("krlImageLightnessHLS", lightnessHLS)
        .summary("Multiplies lightness, as defined by hue, lightness and saturation.")
        .words("brighten, darken, lightness")
        .real("lightness", {.from = 0, .to = 2, .example = 1.25}, "factor; 1.0 keeps")
        .inputFailure("Lightness HLS input failure (Image)")
        .worksPerPixel()
        .failed("Failed Lightness HLS function (Image)");
}

}  // namespace krl
