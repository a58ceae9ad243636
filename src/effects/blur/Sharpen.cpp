#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "effects/blur/EdgeSharpening.h"
#include "kernels/blend/BlendWithCopy.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/EdgeGain.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

template <class Gain>
KRL_VECTOR_LEVELS void sharpenBytes(const uint8_t* sharp, const uint8_t* blurred, Gain gain,
                                    int32_t threshold, uint8_t* out, int32_t count) {
    for (int32_t i = 0; i < count; ++i) out[i] = sharpened(sharp[i], blurred[i], gain, threshold);
}

}  // namespace

/// Unsharp masking of bytes.
Status sharpen(ImageEngine& engine, int32_t radius, float amount, int32_t threshold, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ScratchImage blurred(image);
    leftOutWithoutThreads(TentBlur(engine).blurInto(blurred, image, radius, target));
    return withGain(amount, [&](auto gain) {
        return mixBytes(engine, blurred.row(0), target,
                        [=](const uint8_t* sharp, const uint8_t* beside, uint8_t* out, int32_t count) {
                            sharpenBytes(sharp, beside, gain, threshold, out, count);
                        });
    });
}

void describeSharpen(Catalogue& catalogue) {
    catalogue.add("krlImageSharpen", sharpen)
        .summary("Sharpens edges by what a blur takes from them.")
        .words("unsharp mask, crisp, detail, clarity")
        .integer("radius", kSharpenRadius, kSharpenRadiusMeaning)
        .real("amount", {.from = 0, .to = 5, .example = 1.5, .neutral = 0}, kAmountMeaning)
        .integer("threshold", kThreshold, kThresholdMeaning)
        .symbol("colourOrAlpha", anyChannels(), kElseAlpha,
                "colours and transparency, colours, or transparency alone")
        .showing("RGB")
        .inputFailure("Sharpen input failure (Image)")
        .failed("Failed Sharpen function (Image)");
}

}  // namespace krl
