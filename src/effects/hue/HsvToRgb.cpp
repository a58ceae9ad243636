#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "kernels/colour/ColourSpace.h"

namespace krl {

namespace {

/// Gives a hue, saturation and value as a colour, by the low byte of each channel.
Outcome convertHsvToRgb(Call& call) {
    const Rgb rgb = hsvToRgb({call.get<float>(0), call.get<float>(1), call.get<float>(2)});
    call.caller().give("RGB", Colour(static_cast<uint8_t>(rgb.red), static_cast<uint8_t>(rgb.green),
                                     static_cast<uint8_t>(rgb.blue)));
    call.caller().leaveOutError();
    return succeeded();
}

/// The conversion's range test: it refuses what is below and above at once, which no number is. Scripts rely
/// on every number going through.
auto notBelowAndAbove(double low, double high) {
    return [=](const ArgumentValue& argument) { return !(argument.real < low && argument.real > high); };
}

}  // namespace

void describeHsvToRgb(Catalogue& catalogue) {
    catalogue.add("krlImageHSVtoRGB")
        .summary("Converts hue, saturation and value to a colour; needs no picture.")
        .words("convert, colour, color")
        .real("hue", {.from = 0, .to = 360, .example = 30}, "degrees")
        .mustPass(notBelowAndAbove(0, 360), "HSVtoRGB invalid input hue (Image)")
        .thenCompare()
        .real("saturation", {.from = 0, .to = 1, .example = 0.8}, "0.0 is grey")
        .mustPass(notBelowAndAbove(0, 1), "HSVtoRGB invalid input saturation (Image)")
        .thenCompare()
        .real("value", {.from = 0, .to = 1, .example = 1.0}, "level of the brightest channel")
        .mustPass(notBelowAndAbove(0, 1), "HSVtoRGB invalid input value (Image)")
        .gives("RGB", "the colour; there is no error entry")
        .inputFailure("HSVtoRGB input failure (Image)")
        .failed("HSVtoRGB input failure (Image)")
        .leavesPicture()
        .worksWithoutEngine()
        .does(convertHsvToRgb);
}

}  // namespace krl
