#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "effects/hue/HueEffects.h"
#include "kernels/colour/ColourSpace.h"

/// Bindings of the hue effects, and the two conversions that a script can use by itself.
namespace krl {

namespace {

/// The range test of the conversion: it refuses what lies below and above at once, which no number
/// does. Scripts rely on every number going through.
auto notBelowAndAbove(double low, double high) {
    return [=](const ArgumentValue& argument) { return !(argument.real < low && argument.real > high); };
}

Outcome convertHsvToRgb(Call& call) {
    const Rgb rgb = hsvToRgb({call.get<float>(0), call.get<float>(1), call.get<float>(2)});
    call.caller().give("RGB", Colour(static_cast<uint8_t>(rgb.red), static_cast<uint8_t>(rgb.green),
                                     static_cast<uint8_t>(rgb.blue)));
    call.caller().leaveOutError();
    return succeeded();
}

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

void addHues(Catalogue& catalogue) {
    catalogue.add(method("krlImageHueColourise", hueColourise)
                      .summary("Gives every colour one hue, keeping its lightness and saturation.")
                      .integer("hueValue", {.from = 0, .to = 360, .example = 210},
                               "hue in degrees: 0 red, 120 green, 240 blue")
                      .integer("density", {.from = 0, .to = 150, .example = 100},
                               "percent of the new colour; beyond 100 overshoots")
                      .inputFailure("Hue Colourise input failure (Image)")
                      .failed("Failed Hue Colourise function (Image)"));
    catalogue.add(method("krlImageHueShift", hueShift)
                      .summary("Turns all hues around the colour circle.")
                      .integer("hueValue", {.from = 0, .to = 360, .example = 90}, "degrees to turn by")
                      .integer("density", {.from = 0, .to = 150, .example = 100},
                               "percent of the new colour; beyond 100 overshoots")
                      .inputFailure("HueShift input failure (Image)")
                      .failed("Failed Hue Shift function (Image)"));
    catalogue.add(
        method("krlImagePosteriseHue", posteriseHue)
            .summary("Reduces hues to a few, and turns them; greys stay.")
            .integer("level", {.from = 1, .to = 36, .example = 6}, "number of hues; 0 keeps them all")
            .integer("rotation", {.from = 0, .to = 360, .example = 30}, "degrees to turn the result by")
            .inputFailure("Posterise Hue input failure (Image)")
            .failed("Failed Posterise Hue function (Image)"));
}

void addLightness(Catalogue& catalogue) {
    catalogue.add(method("krlImageLightnessHLS", lightnessHLS)
                      .summary("Multiplies lightness, as hue, lightness and saturation count it.")
                      .real("lightness", {.from = 0, .to = 2, .example = 1.25}, "factor; 1.0 keeps")
                      .inputFailure("Lightness HLS input failure (Image)")
                      .failed("Failed Lightness HLS function (Image)"));
    catalogue.add(
        method("krlImageLightnessHSV", lightnessHSV)
            .summary("Lightens or darkens; what is lightened loses saturation too.")
            .real("lightness", {.from = 0, .to = 2, .example = 1.25}, "1.0 keeps, 2.0 gives white, 0.0 black")
            .inputFailure("Lightness HSV input failure (Image)")
            .failed("Failed Lightness HSV function (Image)"));
}

void addConversions(Catalogue& catalogue) {
    catalogue.add(method("krlImageHSVtoRGB")
                      .summary("Converts hue, saturation and value to a colour; needs no picture.")
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
                      .does(convertHsvToRgb));
    catalogue.add(method("krlImageRGBtoHSV")
                      .summary("Converts a colour to hue, saturation and value; needs no picture.")
                      .colour("pColor", Colour(255, 140, 40), "the colour")
                      .gives("hue", "degrees, -1.0 for a grey; there is no error entry")
                      .gives("saturation", "0.0 to 1.0")
                      .gives("value", "0.0 to 1.0")
                      .inputFailure("RGBtoHSV input failure (Image)")
                      .failed("RGBtoHSV input failure (Image)")
                      .leavesPicture()
                      .worksWithoutEngine()
                      .does(convertRgbToHsv));
}

}  // namespace

void describeHueMethods(Catalogue& catalogue) {
    addHues(catalogue);
    addLightness(catalogue);
    addConversions(catalogue);
}

}  // namespace krl
