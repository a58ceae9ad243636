#include "catalogue/Catalogue.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/blur.h"

namespace krl {

/// The tent blur on each colour with a radius of its own, red first; a failure ends it.
Status blurProRGB(ImageEngine& engine, int32_t blurR, int32_t blurG, int32_t blurB) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    TentBlur blur(engine);
    const int32_t radii[] = {blurB, blurG, blurR};
    Status status = kStatusOk;
    for (int32_t channel = 2; channel >= 0 && status == kStatusOk; --channel)
        status = blur.blurChannel(image.row(0), image.height, image.width, radii[channel], channel);
    return status;
}

void describeBlurProRGB(Catalogue& catalogue) {
    catalogue.add("krlImageBlurProRGB", blurProRGB)
        .summary("Softens red, green and blue, each by its own radius.")
        .words("soften, fringe, colour fringe, chromatic aberration")
        .integer("blurR", {.from = 0, .to = 60, .example = 16, .least = 0, .pixels = true},
                 "radius for red; 0 leaves it sharp")
        .integer("blurG", {.from = 0, .to = 60, .example = 0, .least = 0, .pixels = true}, "radius for green")
        .integer("blurB", {.from = 0, .to = 60, .example = 6, .least = 0, .pixels = true}, "radius for blue")
        .inputFailure("Blur Pro RGB input failure (Image)")
        .failed("Failed Blur Pro RGB function (Image)");
}

}  // namespace krl
