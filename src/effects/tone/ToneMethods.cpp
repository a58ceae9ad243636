#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/tone/ToneEffects.h"

/// Bindings of the tone effects.
namespace krl {

namespace {

void addCurves(Catalogue& catalogue) {
    catalogue.add(method("krlImageBrightness", brightness)
                      .summary("Lightens or darkens by a fixed amount.")
                      .integer("brightnessInt", {.from = -255, .to = 255, .example = 40}, "levels to add")
                      .symbol("colourOrAlpha", colourOrAlpha(),
                              refused("Brightness invalid colourOrAlpha input (Image)"), kTargetMeaning)
                      .inputFailure("Brightness input failure (Image)")
                      .failed("Failed Brightness function (Image)"));
    catalogue.add(method("krlImageContrast", contrast)
                      .summary("Spreads tones away from mid grey, or draws them together.")
                      .real("contrastFloat", {.from = -2, .to = 4, .example = 1.4},
                            "factor on the distance from level 127; 1.0 changes nothing, negative inverts")
                      .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
                      .inputFailure("Contrast input failure (Image)")
                      .failed("Failed Contrast function (Image)"));
    catalogue.add(
        method("krlImageGamma", gamma)
            .summary("Raises every level, as it stands on 0..255, to the power 1 / gamma.")
            .real("gamma", {.from = 0.8, .to = 1.3, .example = 1.05},
                  "1.0 changes nothing, above darkens and below lightens; small steps go far, as nothing "
                  "is scaled back")
            .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
            .inputFailure("Gamma input failure (Image)")
            .failed("Failed Gamma function (Image)"));
    catalogue.add(
        method("krlImageLevels", levels)
            .summary("Spreads a range of tones over another and bends the middle.")
            .integer("minLevel", {.from = 0, .to = 255, .example = 20}, "level that becomes the darkest")
            .real("midGamma", {.from = 0.1, .to = 9.99, .example = 1.2},
                  "bend of the middle; above 1.0 lightens")
            .integer("maxLevel", {.from = 0, .to = 255, .example = 235}, "level that becomes the lightest")
            .integer("outMin", {.from = 0, .to = 255, .example = 0}, "darkest level of the result")
            .integer("outMax", {.from = 0, .to = 255, .example = 255}, "lightest level of the result")
            .symbol("channel",
                    {{"RGB", LevelsChannel::RGB},
                     {"Blue", LevelsChannel::Blue},
                     {"Green", LevelsChannel::Green},
                     {"Red", LevelsChannel::Red},
                     {"Alpha", LevelsChannel::Alpha}},
                    otherwise(LevelsChannel::None),
                    "the three colours, one of them, or transparency; any other symbol changes nothing")
            .inputFailure("Levels input failure (Image)")
            .failed("Failed Levels function (Image)"));
    catalogue.add(
        method("krlImageExposure", exposure)
            .summary("Scales light as a longer or shorter exposure would.")
            .real("exposure", {.from = -20, .to = 20, .example = 0.8},
                  "each 2.2 doubles the light; 0.0 changes nothing")
            .real("offset", {.from = -0.5, .to = 0.5, .example = 0.02}, "lifts or lowers, shadows most")
            .real("gamma", {.from = 0.8, .to = 1.3, .example = 1.0},
                  "bend of the result, as in krlImageGamma; 1.0 is none")
            .inputFailure("Exposure input failure (Image)")
            .failed("Failed Exposure function (Image)"));
    catalogue.add(
        method("krlImageSuperContrast", superContrast)
            .summary("Spreads the tones between two levels over the whole scale and clips the rest.")
            .integer("low", {.from = 0, .to = 255, .example = 40}, "level that becomes black")
            .integer("high", {.from = 0, .to = 255, .example = 200}, "level that becomes white")
            .symbol("colourOrAlpha", colourOrAlpha(),
                    refused("Super Contrast invalid colourOrAlpha input (Image)"), kTargetMeaning)
            .inputFailure("Super Contrast input failure (Image)")
            .failed("Failed Super Contrast function (Image)"));
    catalogue.add(
        method("krlImageMediumTones", mediumTones)
            .summary("Scales each colour so that its mean comes near a level; evens out a colour cast.")
            .integer("level", {.from = 0, .to = 255, .example = 120}, "the mean to reach")
            .inputFailure("Medium Tones input failure (Image)")
            .failed("Failed Medium Tones function (Image)"));
}

void addGraphicTones(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageThresholdPro", thresholdPro)
            .summary("Parts tones at a threshold and makes steps of either half.")
            .integer("preBlur", {.from = 0, .to = 30, .example = 2},
                     "softening before the parting, in pixels")
            .integer("threshold", {.from = 0, .to = 255, .example = 110}, "level at which tones are parted")
            .integer("steps", {.from = 1, .to = 16, .example = 3},
                     "steps of each half; 1 gives black and white")
            .symbol("colourOrAlpha", colourOrAlpha(),
                    refused("Threshold invalid colourOrAlpha input (Image)"),
                    "greys by the mean of the three colours, or transparency alone")
            .failsWith("Threshold input failure (Image)")
            .inputFailure("Theshold input failure (Image)")
            .failed("Failed Threshold function (Image)"));
    catalogue.add(method("krlImageInvert", invert)
                      .summary("Turns every level into its opposite, as a negative.")
                      .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
                      .inputFailure("Invert input failure (Image)")
                      .failed("Failed Invert function (Image)"));
    catalogue.add(
        method("krlImagePosterise", posterise)
            .summary("Reduces tones to a few flat steps.")
            .integer("level", {.from = 1, .to = 32, .example = 4}, "number of steps; 0 changes nothing")
            .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
            .inputFailure("Posterise input failure (Image)")
            .failed("Failed Posterise function (Image)"));
    catalogue.add(method("krlImageSolarise", solarise)
                      .summary("Reverses the lighter half of the tones, as a print exposed twice.")
                      .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
                      .inputFailure("Solarise input failure (Image)")
                      .failed("Failed Solarise function (Image)"));
    catalogue.add(method("krlImageThreshold", threshold)
                      .summary("Leaves nothing but black and white.")
                      .integer("threshold", {.from = 0, .to = 255, .example = 120},
                               "white is what lies above this mean")
                      .failsWith("Theshold input failure (Image)")
                      .symbol("colourOrAlpha", colourOrAlpha(),
                              refused("Threshold invalid colourOrAlpha input (Image)"), kTargetMeaning)
                      .inputFailure("Threshold input failure (Image)")
                      .failed("Failed Threshold function (Image)"));
}

}  // namespace

void describeToneMethods(Catalogue& catalogue) {
    addCurves(catalogue);
    addGraphicTones(catalogue);
}

}  // namespace krl
