#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/colour.h"

namespace krl {

/// Multiplies each colour by a factor of its own. Any factor is allowed.
Status colourBalance(ImageEngine& engine, float redVal, float greenVal, float blueVal) {
    const auto scaled = [](float by) {
        return byteCurve([=](int32_t i) { return truncatedByte(i * double(by)); });
    };
    return applyCurves(engine, {scaled(blueVal), scaled(greenVal), scaled(redVal)});
}

void describeColourBalance(Catalogue& catalogue) {
    catalogue.add("krlImageColourBalance", colourBalance)
        .summary("Multiplies each colour by a factor of its own.")
        .words("color balance, tint, cast, white balance, grade")
        .real("redVal", {.from = 0, .to = 2, .example = 1.15}, "factor on red; 1.0 changes nothing")
        .real("greenVal", {.from = 0, .to = 2, .example = 1.0}, "factor on green")
        .real("blueVal", {.from = 0, .to = 2, .example = 0.85}, "factor on blue")
        .inputFailure("Colour Balance input failure (Image)")
        .worksPerPixel()
        .failed("Failed Colour Balance (Image)")
        .needsEngine();
}

}  // namespace krl
