#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/film/FilmEffects.h"
#include "effects/film/Noise.h"

/// Bindings of the film looks, noise and grain.
namespace krl {

namespace {

/// What an unknown symbol of the noise becomes before its seed stands in for it.
constexpr int32_t kUnknownTarget = 0;

/// The noise has no code of its own for a symbol that it does not know: the seed is taken for one.
Outcome makeNoise(Call& call) {
    const auto seed = call.get<int32_t>(1), named = call.get<int32_t>(2);
    const auto target = static_cast<ChannelTarget>(named == kUnknownTarget ? seed : named);
    const Status status = noise(*call.engine(), call.get<float>(0), seed, target);
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

void addGrades(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageBleachBypass", bleachBypass)
            .summary("Leaves silver in the print: hard contrast over muted colour.")
            .integer("opacity", {.from = 0, .to = 255, .example = 200}, "how strongly the silver shows")
            .real("contrast", {.from = 0, .to = 2, .example = 1.2}, "contrast of the silver")
            .real("saturation", {.from = 0, .to = 2, .example = 0.6}, "factor on colourfulness")
            .inputFailure("Bleach Bypass input failure (Image)")
            .failed("Failed Bleach Bypass function (Image)"));
    catalogue.add(
        method("krlImageDayForNight", dayForNight)
            .summary("Makes a scene shot by day look like one by moonlight.")
            .integer("blur", {.from = 0, .to = 60, .example = 6}, "radius of the softening in pixels")
            .real("blur_opacity", {.from = 0, .to = 1, .example = 0.6}, "share of the sharp picture")
            .colour("rgbColor", Colour(60, 90, 160), "colour of the night")
            .real("colorOpacity", {.from = 0, .to = 1, .example = 0.25},
                  "share of the colours by day; 0 tints in full")
            .real("highlightOpacity", {.from = 0, .to = 1, .example = 0.4},
                  "how far bright places shine through")
            .real("saturation", {.from = 0, .to = 2, .example = 0.7}, "factor on colourfulness")
            .integer("brightness", {.from = -255, .to = 255, .example = -10}, "levels to add")
            .real("contrast", {.from = 0, .to = 2, .example = 1.1}, "factor on the distance from level 127")
            .real("gamma", {.from = 0.8, .to = 1.2, .example = 1.0},
                  "1.0 changes nothing, above darkens; small steps go far")
            .symbol("colourOrAlpha", colourWithAlpha(), otherwise(ChannelTarget::RGBA),
                    "whether transparency is softened too")
            .inputFailure("Day For Night input failure (Image)")
            .failed("Failed Day For Night function (Image)"));
}

void addColourProcesses(Catalogue& catalogue) {
    constexpr NumberRange expand{.from = 0, .to = 255, .example = 40};
    catalogue.add(method("krlImageTwoStripColor", twoStripColor)
                      .summary("Prints the green record alone, as when two inks are left out.")
                      .integer("expandRed", expand, "changes nothing")
                      .integer("expandGreen", expand, "changes nothing")
                      .integer("expandBlue", expand, "changes nothing")
                      .inputFailure("Two Strip Color input failure (Image)")
                      .failed("Failed Two Strip Color function (Image)"));
    catalogue.add(
        method("krlImageThreeStripColor", threeStripColor)
            .summary("Prints the picture from three separations, whose dyes darken one another.")
            .integer("expandRed", expand, "level below which the red dye does not print; 256 shuts it")
            .integer("expandGreen", expand, "the same for the green dye")
            .integer("expandBlue", expand, "the same for the blue dye")
            .inputFailure("Three Strip Color input failure (Image)")
            .failed("Failed Three Strip Color function (Image)"));
    catalogue.add(
        method("krlImageMultiColourise", multiColourise)
            .summary("Colours the picture by brightness, from a smooth ramp of colours.")
            .colourList("colourValues", {.real = true, .scale = kLevelsPerPercent},
                        {{0, Colour(24, 18, 60)}, {50, Colour(210, 90, 60)}, {100, Colour(255, 244, 200)}},
                        "colours under brightness in percent, 0 for black")
            .real("strength", {.from = 0, .to = 1, .example = 0.7}, "share of the ramp")
            .inputFailure("Multi Colourise input failure (Image)")
            .failed("Failed Multi Colourise function (Image)"));
}

void addNoises(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageNoise")
            .summary("Adds noise that is stronger where the picture is brighter.")
            .real("varience", {.from = 0, .to = 1, .example = 0.15},
                  "largest change, as a share of the level; 0 or less adds nothing")
            .integer("seed", {.from = 0, .to = 10000, .example = 7}, "the same number gives the same noise")
            .symbol("colourOrAlpha", anyChannels(), otherwise(kUnknownTarget),
                    "colours and transparency, colours, or transparency alone")
            .showing("RGB")
            .inputFailure("Noise input failure (Image)")
            .failed("Failed Noise function (Image)")
            .dependsOnBands()
            .does(makeNoise));
    constexpr NumberRange frequency{.from = 1, .to = 20, .example = 2};
    constexpr NumberRange strength{.from = 0, .to = 1, .example = 0.5};
    catalogue.add(
        method("krlImageGrain", grain)
            .summary("Lays film grain over the mid tones.")
            .real("frequencyRed", frequency, "size of the grain in pixels, at least 1, in red")
            .real("frequencyGreen", frequency, "size of the grain in green")
            .real("frequencyBlue", frequency, "size of the grain in blue")
            .real("strengthRed", strength, "how strongly the grain shows in red")
            .real("strengthGreen", strength, "strength of the grain in green")
            .real("strengthBlue", strength, "strength of the grain in blue")
            .integer("lowerBand", {.from = 0, .to = 255, .example = 60},
                     "level below which the grain fades toward black")
            .integer("upperBand", {.from = 0, .to = 255, .example = 200},
                     "level above which the grain fades toward white")
            .integer("seed", {.from = 0, .to = 10000, .example = 7}, "the same number gives the same grain")
            .symbol("colourMethod", {{"RGB", GrainColour::RGB}, {"GREYSCALE", GrainColour::GREYSCALE}},
                    refused("Grain invalid colour method (Image)"),
                    "grain of its own in each colour, or that of red in all three")
            .inputFailure("Grain input failure (Image)")
            .failed("Failed Grain function (Image)"));
}

}  // namespace

void describeFilmMethods(Catalogue& catalogue) {
    addGrades(catalogue);
    addColourProcesses(catalogue);
    addNoises(catalogue);
}

}  // namespace krl
