#include "catalogue/Catalogue.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "effects/blur/EdgeSharpening.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/EdgeGain.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

/// Sharpens byte 2 of each word, the luma, by byte 3, its blur.
template <class Gain>
KRL_VECTOR_LEVELS void sharpenLuma(Pixel* words, ptrdiff_t count, Gain gain, int32_t threshold) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(words[i]);
        const uint8_t luma = sharpened(byteAt(word, 16), byteAt(word, 24), gain, threshold);
        storeWord(words[i], (word & 0xFF00FFFFu) | uint32_t{luma} << 16);
    }
}

}  // namespace

/// Unsharp masking of luma; the colour differences stay.
Status sharpenBrightness(ImageEngine& engine, int32_t radius, float amount, int32_t threshold) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const ChromaImage chroma(image);
    if (Status status = chroma.split(engine)) return status;
    if (Status status = TentBlur(engine, false).blurAlpha(chroma.data(), image.height, image.width, radius))
        return status;
    const Status status = withGain(amount, [&](auto gain) {
        return chroma.forEachWordSpan(
            engine, [=](Pixel* first, Pixel* last) { sharpenLuma(first, last - first, gain, threshold); });
    });
    return status ? status : chroma.merge(engine);
}

void describeSharpenBrightness(Catalogue& catalogue) {
    catalogue.add("krlImageSharpenBrightness", sharpenBrightness)
        .summary("Sharpens brightness alone, so that colour noise stays as it is.")
        .words("unsharp mask, crisp, detail, luminance, clarity")
        .integer("radius", kSharpenRadius, kSharpenRadiusMeaning)
        .real("amount", {.from = 0, .to = 5, .example = 1.5}, kAmountMeaning)
        .integer("threshold", kThreshold, kThresholdMeaning)
        .inputFailure("Sharpen Brightness input failure (Image)")
        .failed("Failed Sharpen Brightness function (Image)");
}

}  // namespace krl
