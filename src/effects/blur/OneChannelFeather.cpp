#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/blur.h"

namespace krl {

/// The tent blur on alpha.
Status oneChannelFeather(ImageEngine& engine, int32_t radius, SampleQuality) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    leftOutWithoutThreads(TentBlur(engine).blurAlpha(image.row(0), image.height, image.width, radius));
    return kStatusOk;
}

void describeOneChannelFeather(Catalogue& catalogue) {
    catalogue.add("krlImageOneChannelFeather", oneChannelFeather)
        .summary("Softens the edge of the transparency; colours stay sharp.")
        .words("soften, edge, alpha, matte, feather")
        .integer("radius", kNeutralRadius, kRadiusMeaning)
        .symbol("quality", {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}},
                refused("One Channel Feather invalid input quality (Image)"), "either gives the same picture")
        .inputFailure("One Channel Feather input failure (Image)")
        .failed("Failed One Channel Feather function (Image)");
}

}  // namespace krl
