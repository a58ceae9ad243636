#include "catalogue/Catalogue.h"
#include "effects/alpha/AlphaUtilities.h"

/// Bindings of the alpha utilities.
namespace krl {

namespace {

void addAlphaPlane(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageAlphaCrop", alphaCrop)
            .summary("Makes everything outside a rectangle transparent.")
            .integer("top", {.from = 0, .to = 400, .example = 40}, "rows to clear at the last row's side")
            .integer("right", {.from = 0, .to = 400, .example = 60}, "columns to clear at the right")
            .integer("bottom", {.from = 0, .to = 400, .example = 40},
                     "rows to clear at the first row's side; 0 still clears one")
            .integer("left", {.from = 0, .to = 400, .example = 60},
                     "columns to clear at the left; 0 still clears one")
            .inputFailure("Alpha Crop input failure (Image)")
            .failed("Failed Alpha Crop function (Image)"));
    catalogue.add(
        method("krlImageAlphaOffset", alphaOffset)
            .summary("Moves the transparency and leaves the colours where they are.")
            .integer("horizontal", {.from = -200, .to = 200, .example = 24}, "columns to the right")
            .integer("vertical", {.from = -200, .to = 200, .example = 24}, "rows away from the first")
            .inputFailure("Alpha Offset input failure (Image)")
            .failed("Failed Alpha Offset function (Image)"));
    catalogue.add(method("krlImageClearAlpha", clearAlpha)
                      .summary("Makes the whole picture transparent or opaque.")
                      .symbol("direction", {{"white", AlphaFill::White}, {"black", AlphaFill::Black}},
                              refused("Clear Alpha invalid input direction (Image)"),
                              "white for opaque, black for transparent")
                      .inputFailure("Clear Alpha input failure (Image)")
                      .failed("Failed Clear Alpha function (Image)"));
    catalogue.add(method("krlImageInputMask", inputMask)
                      .summary("Takes the transparency of another picture of the same size as a matte.")
                      .image("dotImage", {}, "logo.png", "the picture whose transparency is the matte")
                      .symbol("keepRemove", {{"keep", true}, {"remove", false}},
                              refused("Input Mask invalid input keep_remove option (Image)"),
                              "keep only takes opacity away, remove only gives it back")
                      .symbol("invert", {{"true", true}, {"false", false}},
                              refused("InputMask invalid input invert option (Image)"),
                              "with keep, true takes the mask as it stands and false its opposite")
                      .inputFailure("Input Mask input failure (Image)")
                      .failed("Failed Input Mask function (Image)")
                      .asksPlayer()
                      .keepsLocksOnFailure());
}

void addColourToAlpha(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageCombineRGBwithAlpha", combineRGBwithAlpha)
            .summary("Takes the red of a picture drawn as a matte off its transparency: black clears.")
            .failed("Failed Combine RGB with Alpha function (Image)"));
    catalogue.add(method("krlImageRGBtoAlpha", rgbToAlpha)
                      .summary("Makes bright places opaque and dark ones transparent.")
                      .failed("Failed RGB to Alpha function (Image)"));
    catalogue.add(method("krlImageRGBAtoAlpha", rgbaToAlpha)
                      .summary("Makes dark places transparent and lets what was transparent be.")
                      .failed("Failed RGBA to Alpha function (Image)"));
    catalogue.add(method("krlImageViewAlpha", viewAlpha)
                      .summary("Shows the transparency as an opaque grey picture.")
                      .failed("Failed View Alpha function (Image)"));
}

}  // namespace

void describeAlphaMethods(Catalogue& catalogue) {
    addAlphaPlane(catalogue);
    addColourToAlpha(catalogue);
}

}  // namespace krl
