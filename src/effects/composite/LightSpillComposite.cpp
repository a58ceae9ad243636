#include <algorithm>
#include <span>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"
#include "core/VectorLevels.h"
#include "kernels/blend/BlendFunction.h"
#include "kernels/blend/BlockPixels.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/composite.h"

namespace krl {

namespace {

/// Colours of `pixels` with an alpha of what `beside` leaves open.
KRL_STREAM_LEVELS void copyOpenings(Pixel* __restrict out, const Pixel* __restrict pixels,
                                    const Pixel* __restrict beside, size_t count) {
    for (size_t i = 0; i < count; ++i)
        storeWord(out[i], (wordOf(pixels[i]) & 0x00FFFFFFu) | (~wordOf(beside[i]) & 0xFF000000u));
}

/// The image with an alpha of what the background leaves open.
Status copyWithHoles(const ImageEngine& engine, const SecondImage& background, Scratch<Pixel>& light) {
    const ImageBuffer& image = *engine.buffer();
    const std::span<const Pixel> block(image.row(0), image.bytes() / sizeof(Pixel));
    const ptrdiff_t beyond = pixelsBeside(engine, background);
    std::copy(block.begin() + beyond, block.end(), light.begin() + beyond);
    return forEachSpanBeside(engine, background, [&](Pixel* pixels, size_t count, const Pixel* beside) {
        copyOpenings(light.data() + (pixels - image.row(0)), pixels, beside, count);
    });
}

}  // namespace

/// Blends the image's light, blurred together with the background's openings, onto the background, and lays
/// both over the image by the background's alpha.
Status lightSpillComposite(ImageEngine& engine, const SecondImage& background, int32_t blur,
                           BlendMode blendMethod) {
    if (Status state = engine.imageStatus()) return state;
    if (!engine.hasSizeOf(background)) return kStatusMaskSize;
    if (!background.pixels) return kStatusNoImage;
    const ImageBuffer& image = *engine.buffer();
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = copyWithHoles(engine, background, light)) return status;
    if (blur > 0)
        leftOutWithoutThreads(TentBlur(engine).blurRGBA(light.data(), image.height, image.width, blur));

    const BlendFunction layLight = shiftBlendSpan(blendMethod),
                        layOnImage = shiftBlendSpan(BlendMode::Normal);
    return forEachSpanBeside(engine, background, [&](Pixel* pixels, size_t count, const Pixel* beside) {
        const Pixel* shine = light.data() + (pixels - image.row(0));
        forEachBatch(count, [&](size_t start, size_t size) {
            Pixel lit[kBatchPixels];
            std::copy_n(beside + start, size, lit);
            layLight(lit, shine + start, size, engine.tables());
            layOnImage(pixels + start, lit, size, engine.tables());
        });
    });
}

void describeLightSpillComposite(Catalogue& catalogue) {
    catalogue.add("krlImageLightSpillComposite", lightSpillComposite)
        .summary("Puts a cut-out picture in place and lets this one's light bleed over its edges.")
        .words("light wrap, edge, blend, cutout, composite")
        .image("background", {}, "logo.png", "the cut-out picture, of this one's size")
        .integer("blur", {.from = 0, .to = 100, .example = 20, .least = 0, .pixels = true},
                 "how far the light reaches, in pixels")
        .symbol("blendMethod", lightBlends(),
                refused("Light Spill Composite invalid input blendMethod (Image)"),
                "how the light is laid on the cut-out")
        .showing("screen")
        .inputFailure("Light Spill Composite input failure (Image)")
        .failed("Failed Light Spill Composite function (Image)")
        .asksPlayer()
        .keepsLocksOnFailure();
}

}  // namespace krl
