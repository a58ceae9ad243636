#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

/// White where the mean of the colours, or alpha, is above a level, black elsewhere. The level is limited to
/// 0..255.
Status threshold(ImageEngine& engine, int32_t threshold, ChannelTarget target) {
    const int32_t limit = clampTo(threshold, 0, 255);
    const ByteCurve curve = byteCurve([=](int32_t level) { return level > limit ? 255 : 0; });
    if (target != ChannelTarget::RGB) return applyCurve(engine, target, curve);
    return recolourByMean(engine,
                          [&](Pixel* first, Pixel* last) { applyCurveTo<0, 1, 2>(first, last, curve); });
}

void describeThreshold(Catalogue& catalogue) {
    catalogue.add("krlImageThreshold", threshold)
        .summary("Leaves nothing but black and white.")
        .words("black and white, binary, stamp, photocopy")
        .integer("threshold", {.from = 0, .to = 255, .example = 120, .least = 0, .most = 255},
                 "means above this level become white")
        .failsWith("Theshold input failure (Image)")
        .symbol("colourOrAlpha", colourOrAlpha(), refused("Threshold invalid colourOrAlpha input (Image)"),
                kTargetMeaning)
        .inputFailure("Threshold input failure (Image)")
        .worksPerPixel()
        .failed("Failed Threshold function (Image)");
}

}  // namespace krl
