#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Numbers.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/blur.h"

namespace krl {

/// A blur, then all colour divided by what `bloom` leaves of 1.
Status defocus(ImageEngine& engine, int32_t blur, float bloom, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChannelTarget blurred = target == ChannelTarget::RGBA ? target : ChannelTarget::RGB;
    leftOutWithoutThreads(
        TentBlur(engine).blurTarget(image.row(0), image.height, image.width, blur, blurred));
    const auto rest = static_cast<float>(1.0 - static_cast<float>(clampTo<double>(bloom, 0.0, 0.8)));
    const ByteCurve lift = byteCurve([=](int32_t i) { return truncatedByte(i / 255.0 / rest * 255.0); });
    return applyCurve(engine, ChannelTarget::RGB, lift);
}

void describeDefocus(Catalogue& catalogue) {
    catalogue.add("krlImageDefocus", defocus)
        .summary("Softens the picture and lets highlights bloom.")
        .words("blur, soften, bokeh, out of focus, bloom, lens")
        .integer("blur", kRadius, kRadiusMeaning)
        .real("bloom", {.from = 0, .to = 0.8, .example = 0.25, .least = 0, .most = 0.8},
              "how far light swells: all colour is divided by what this leaves of 1")
        .symbol("colourOrAlpha", {{"RGBA", ChannelTarget::RGBA}, {"RGB", ChannelTarget::RGB}},
                refused("Defocus invalid input colourOrAlpha (Image)"),
                "whether transparency is softened too")
        .inputFailure("Defocus input failure (Image)")
        .failed("Failed Defocus function (Image)");
}

}  // namespace krl
