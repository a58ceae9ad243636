#include "krlimage/composite.h"

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/blend/BlendFunction.h"
#include "kernels/blend/BlockPixels.h"

namespace krl {

/// Lays `foreground`, of the image's own size, over the image: `blendChannel` for each colour byte, or
/// `layOver` for each pixel where the background's alpha counts.
Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha) {
    if (Status state = engine.imageStatus()) return state;
    if (!foreground.pixels) return kStatusNoPixels;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    const bool straight = backgroundAlpha == AlphaRule::BackgroundAlphaYes;
    const BlendFunction blend = straight ? overBlendSpan(blendMethod) : shiftBlendSpan(blendMethod);
    return forEachSpanBeside(engine, foreground, [&](Pixel* pixels, size_t count, const Pixel* front) {
        blend(pixels, front, count, engine.tables());
    });
}

void describeComposite(Catalogue& catalogue) {
    catalogue.add("krlImageComposite", composite)
        .summary("Lays a second picture over this one in any of the blend modes.")
        .words("overlay, blend, layer, blend mode, multiply, screen, paste, logo, watermark")
        .image("foreground", kCompositeSizes, "logo.png", "the picture on top, of this one's size")
        .symbol("blendMethod", compositeBlends(), refused("Composite invalid input blendMethod (Image)"),
                "how the two colours meet")
        .showing("screen")
        .thenCompare()
        .symbol("backgroundAlpha",
                {{"background_alpha_yes", AlphaRule::BackgroundAlphaYes},
                 {"background_alpha_no", AlphaRule::BackgroundAlphaNo}},
                refused("Unknown #background_alpha method (Image)"),
                "whether this picture's own transparency counts and grows, or stays as it is")
        .inputFailure("Composite input failure (Image)")
        .worksPerPixel()
        .failed("Failed Composite function (Image)")
        .asksPlayer()
        .keepsLocksOnFailure();
}

}  // namespace krl
