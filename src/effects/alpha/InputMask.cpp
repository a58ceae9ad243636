#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/matte/KeyMatte.h"
#include "krlimage/alpha.h"

namespace krl {

/// Folds the alpha of `dotImage`, an image of the same size, in as a key matte.
Status inputMask(ImageEngine& engine, const SecondImage& dotImage, bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    if (!dotImage.pixels) return kStatusNoMaskImage;
    if (!engine.hasSizeOf(dotImage)) return kStatusMaskSize;
    return forEachPixelPair(engine, dotImage, [=](Pixel& p, const Pixel& mask) {
        p.alpha = applyKeyMatte(p.alpha, mask.alpha, keep, invert);
    });
}

void describeInputMask(Catalogue& catalogue) {
    catalogue.add("krlImageInputMask", inputMask)
        .summary("Takes the transparency of another picture of the same size as a matte.")
        .words("matte, mask, transparency, stencil")
        .image("dotImage", {}, "logo.png", "the picture whose transparency is the matte")
        .symbol("keepRemove", keepOrRemove(), refused("Input Mask invalid input keep_remove option (Image)"),
                kKeepMeaning)
        .symbol("invert", invertOrNot(), refused("InputMask invalid input invert option (Image)"),
                "with keep, true takes the mask as it is and false its opposite")
        .inputFailure("Input Mask input failure (Image)")
        .worksPerPixel()
        .failed("Failed Input Mask function (Image)")
        .asksPlayer()
        .keepsLocksOnFailure();
}

}  // namespace krl
