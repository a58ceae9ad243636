#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "kernels/colour/ColourSpace.h"

namespace krl {

namespace {

/// Gives the hue, saturation and value of a colour.
Outcome convertRgbToHsv(Call& call) {
    const auto colour = call.get<Colour>(0);
    const auto unit = [](uint8_t byte) { return static_cast<float>(byte / 255.0); };
    const Hsv hsv = rgbToHsv(unit(colour.red()), unit(colour.green()), unit(colour.blue()));
    call.caller().leaveOutError();
    call.caller().give("hue", double{hsv.hue});
    call.caller().give("saturation", double{hsv.saturation});
    call.caller().give("value", double{hsv.value});
    return succeeded();
}

}  // namespace

void describeRgbToHsv(Catalogue& catalogue) {
    catalogue.add("krlImageRGBtoHSV")
        .summary("Converts a colour to hue, saturation and value; needs no picture.")
        .words("convert, colour, color")
        .colour("pColor", Colour(255, 140, 40), "the colour")
        .gives("hue", "degrees, -1.0 for a grey; there is no error entry")
        .gives("saturation", "0.0 to 1.0")
        .gives("value", "0.0 to 1.0")
        .inputFailure("RGBtoHSV input failure (Image)")
        .failed("RGBtoHSV input failure (Image)")
        .leavesPicture()
        .worksWithoutEngine()
        .does(convertRgbToHsv);
}

}  // namespace krl
