#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "effects/composite/GleamChoices.h"
#include "effects/composite/GleamStages.h"
#include "kernels/blend/BlockPixels.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/composite.h"

namespace krl {

/// Lays `foreground` over the image, and over both the foreground's bright parts, softened by `blur`.
Status gleamBlurComposite(ImageEngine& engine, const SecondImage& foreground,
                          const GleamBlurSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoImage;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const ImageBuffer& image = *engine.buffer();
    const GleamStages stages(
        engine, foreground,
        {settings.compositeBlendMethod, settings.compositeTransparency, settings.blackPoint,
         settings.whitePoint, settings.blendMethod, settings.brightness, settings.transparency,
         settings.colorList, settings.colourMethod});
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = stages.extractLight(light)) return status;
    if (settings.blur > 0)
        leftOutWithoutThreads(
            TentBlur(engine).blurRGBA(light.data(), image.height, image.width, settings.blur));
    return stages.finish(light);
}

void describeGleamBlurComposite(Catalogue& catalogue) {
    catalogue.add("krlImageGleamBlurComposite", gleamBlurComposite)
        .summary("Lays a picture over this one and lets its bright parts glow softly.")
        .words("glow, bloom, highlights, light")
        .image("foreground", kCompositeSizes, "landscape.png", "the picture on top, of this one's size")
        .symbol("compositeBlendMethod", compositeBlends(),
                refused("Gleam Blur invalid input compositeBlendMethod (Image)"),
                "how the foreground meets this picture")
        .showing("normal")
        .integer("compositeTransparency", {.from = 0, .to = 255, .example = 255, .least = 0, .most = 255},
                 kOpacityOfFront)
        .integer("blackPoint", {.from = 0, .to = 255, .example = 120, .least = 0, .most = 255}, kBlackMeaning)
        .integer("whitePoint", {.from = 0, .to = 255, .example = 240, .least = 0, .most = 255}, kWhiteMeaning)
        .integer("blur", {.from = 0, .to = 100, .example = 25, .least = 0, .pixels = true},
                 "how far the light spreads, in pixels")
        .symbol("blendMethod", compositeBlends(), refused("Gleam Blur invalid input blendMethod (Image)"),
                "how the light is laid on")
        .showing("screen")
        .real("brightness", {.from = 0, .to = 1, .example = 0.2, .least = 0, .most = 1}, kGainMeaning)
        .integer("transparency", {.from = 0, .to = 255, .example = 220, .least = 0, .most = 255},
                 kOpacityOfLight)
        .colourList("colorList", kLevelKeys, warmRamp(), kRampMeaning)
        .symbol("colourMethod", colourMethods(), refused("Gleam Blur invalid input colourMethod (Image)"),
                kColourMethodMeaning)
        .inputFailure("Gleam Blur input failure (Image)")
        .failed("Failed Gleam Blur function (Image)")
        .keepsLocksOnFailure();
}

}  // namespace krl
