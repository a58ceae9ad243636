#include "catalogue/Catalogue.h"
#include "effects/colour/ColourEffects.h"

/// Bindings of the colour effects.
namespace krl {

namespace {

void addLights(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageAmbientLight", ambientLight)
            .summary("Lights the picture with one colour only.")
            .colour("myColor", Colour(255, 222, 190), "colour of the light; white changes nothing")
            .integer("intensity", {.from = 0, .to = 255, .example = 10}, "levels added to the light")
            .inputFailure("Ambient Light input failure (Image)")
            .failed("Failed Ambient Light function (Image)"));
    catalogue.add(
        method("krlImageColourBalance", colourBalance)
            .summary("Multiplies each colour by a factor of its own.")
            .real("redVal", {.from = 0, .to = 2, .example = 1.15}, "factor on red; 1.0 changes nothing")
            .real("greenVal", {.from = 0, .to = 2, .example = 1.0}, "factor on green")
            .real("blueVal", {.from = 0, .to = 2, .example = 0.85}, "factor on blue")
            .inputFailure("Colour Balance input failure (Image)")
            .failed("Failed Colour Balance (Image)")
            .needsEngine());
    catalogue.add(method("krlImageColourTemperature", colourTemperature)
                      .summary("Lights the picture with the glow of a hot body, from candle to sky.")
                      .real("tempShift", {.from = 1500, .to = 12000, .example = 4500},
                            "temperature in kelvin; low is warm, about 4900 is neutral, high is cold")
                      .inputFailure("Colour Temperature input failure (Image)")
                      .failed("Failed Colour Temperature function (Image)"));
}

void addGreys(Catalogue& catalogue) {
    catalogue.add(method("krlImageDesaturate", desaturate)
                      .summary("Replaces colour by the plain mean of red, green and blue.")
                      .failed("Failed Desaturate function (Image)"));
    catalogue.add(method("krlImageDesaturatePro", desaturatePro)
                      .summary("Mixes a black and white picture from red, green and blue by weight.")
                      .real("red", {.from = 0, .to = 1, .example = 0.3}, "weight of red")
                      .real("green", {.from = 0, .to = 1, .example = 0.59}, "weight of green")
                      .real("blue", {.from = 0, .to = 1, .example = 0.11}, "weight of blue")
                      .integer("opacity", {.from = 0, .to = 256, .example = 256},
                               "share of the result, of 256; 0 changes nothing")
                      .symbol("equalise", {{"true", true}, {"false", false}}, otherwise(false),
                              "whether to divide by the sum of the weights")
                      .inputFailure("Desaturate Pro input failure (Image)")
                      .failed("Failed Desaturate Pro function (Image)"));
    catalogue.add(method("krlImageSepia", sepia)
                      .summary("Turns the picture into an old brown print.")
                      .failed("Failed Sepia function (Image)"));
}

void addMixes(Catalogue& catalogue) {
    catalogue.add(method("krlImageRGBChannelSwap", rgbChannelSwap)
                      .summary("Exchanges the three colours with one another.")
                      .symbol("channel",
                              {{"RGBtoRGB", ChannelOrder::RGB},
                               {"RGBtoRBG", ChannelOrder::RBG},
                               {"RGBtoGBR", ChannelOrder::GBR},
                               {"RGBtoGRB", ChannelOrder::GRB},
                               {"RGBtoBRG", ChannelOrder::BRG},
                               {"RGBtoBGR", ChannelOrder::BGR}},
                              refused("RGB Channel Swap invalid channel input (Image)"),
                              "what stands for red, green and blue, in this order")
                      .showing("RGBtoBGR")
                      .integer("opacity", {.from = 0, .to = 256, .example = 256},
                               "share of the result, of 256; 0 changes nothing")
                      .inputFailure("RGB Channel Swap input failure (Image)")
                      .failed("Failed RGB Channel Swap function (Image)"));
    catalogue.add(method("krlImageSaturation", saturation)
                      .summary("Strengthens or weakens colour, keeping hue and brightest channel.")
                      .real("saturation", {.from = 0, .to = 3, .example = 1.5},
                            "factor; 1.0 keeps, 0.0 leaves the grey of the brightest channel")
                      .inputFailure("Saturation input failure (Image)")
                      .failed("Failed Saturation function (Image)"));
}

}  // namespace

void describeColourMethods(Catalogue& catalogue) {
    addLights(catalogue);
    addGreys(catalogue);
    addMixes(catalogue);
}

}  // namespace krl
