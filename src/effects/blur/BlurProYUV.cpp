#include "catalogue/Catalogue.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/blur.h"

namespace krl {

/// The tent blur on luma and both colour differences, each with a radius of its own.
Status blurProYUV(ImageEngine& engine, int32_t blurY, int32_t blurU, int32_t blurV) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChromaImage chroma(image);
    if (Status status = chroma.split(engine)) return status;
    TentBlur blur(engine, false);
    const int32_t radii[] = {blurU, blurV, blurY};
    for (int32_t channel = 0; channel < 3; ++channel)
        if (Status status =
                blur.blurChannel(chroma.data(), image.height, image.width, radii[channel], channel))
            return status;
    return chroma.merge(engine);
}

void describeBlurProYUV(Catalogue& catalogue) {
    catalogue.add("krlImageBlurProYUV", blurProYUV)
        .summary("Softens brightness and the two colour differences, each by its own radius.")
        .words("soften, chroma, noise reduction, old video")
        .integer("blurY", {.from = 0, .to = 60, .example = 0, .least = 0, .pixels = true},
                 "radius for brightness")
        .integer("blurU", {.from = 0, .to = 60, .example = 12, .least = 0, .pixels = true},
                 "radius for blue less brightness")
        .integer("blurV", {.from = 0, .to = 60, .example = 12, .least = 0, .pixels = true},
                 "radius for red less brightness")
        .inputFailure("Blur Pro YUV input failure (Image)")
        .failed("Failed Blur Pro YUV function (Image)");
}

}  // namespace krl
