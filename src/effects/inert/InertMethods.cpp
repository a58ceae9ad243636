#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"

/// Methods that read and check their arguments like any other and leave the picture as it is, so that scripts
/// written for the whole list of methods run. They have no bodies of their own and differ only by their
/// entries, so they share this file.
namespace krl {

namespace {

/// A method that does nothing once its arguments are read; it needs neither engine nor picture.
Method& addInert(Catalogue& catalogue, const char* name) {
    return catalogue.add(name)
        .summary("Checks its arguments and leaves the picture as it is.")
        .inert()
        .worksWithoutEngine()
        .does([](Call&) { return succeeded(); });
}

/// What does nothing too, but fails where no picture is loaded.
template <class... Arguments>
Status leaveLoadedPicture(ImageEngine& engine, Arguments...) {
    return engine.imageStatus();
}

const std::vector<ColourStop> kColoursExample = {{0, Colour(0, 0, 0)}, {100, Colour(255, 255, 255)}};

std::vector<SymbolChoice> colourSources() { return {{"from_image", 0}, {"colourise_image", 1}}; }
std::vector<SymbolChoice> qualities() { return {{"standard", 0}, {"antialiased", 1}}; }

}  // namespace

void describeDefinePattern(Catalogue& catalogue) {
    addInert(catalogue, "krlImageDefinePattern")
        .image("patternImage", {}, "logo.png", "a picture")
        .symbol("blendMethod", allBlends(), refused("Zoom Glow invalid input blendMethod (Image)"),
                "a blend mode")
        .integer("transparency", {.from = 0, .to = 255, .example = 255}, "opacity; 255 is full")
        .inputFailure("Define Pattern input failure (Image)")
        .failed("Failed Define Pattern function (Image)");
}

void describeDiffuseExtended(Catalogue& catalogue) {
    addInert(catalogue, "krlImageDiffuseExtended")
        .integer("threshold", {.from = 0, .to = 255, .example = 128}, "a level")
        .symbol("colourMethod", {{"black", 0}, {"white", 1}},
                refused("Diffuse Extended invalid input quality (Image)"), "a colour")
        .integer("blur", {.from = 0, .to = 50, .example = 5, .pixels = true}, "a radius in pixels")
        .real("opacity", {.from = 0, .to = 1, .example = 0.5}, "a share")
        .symbol("quality", qualities(), refused("Diffuse Extended invalid input quality (Image)"),
                "a quality")
        .inputFailure("Diffuse Extended input failure (Image)")
        .failed("Failed Diffuse Extended function (Image)");
}

void describeFishEye(Catalogue& catalogue) {
    addInert(catalogue, "krlImageFishEye")
        .integer("radius", {.from = 0, .to = 500, .example = 100, .pixels = true}, "a radius in pixels")
        .real("curvature", {.from = 0, .to = 2, .example = 1}, "a strength")
        .point("origin", {}, "a place")
        .symbol("direction", {{"inwards", 0}, {"outwards", 1}},
                refused("Fish Eye invalid input direction option (Image)"), "a direction")
        .symbol("background", {{"original", 0}, {"transparent", 1}},
                refused("Fish Eye invalid input background option (Image)"), "what is shown outside")
        .symbol("traditional", {{"yes", true}, {"no", false}},
                refused("Fish Eye invalid input background option (Image)"), "a choice of lens")
        .inputFailure("Fish Eye input failure (Image)")
        .failed("Failed Fish Eye function (Image)");
}

void describeGleamBlur(Catalogue& catalogue) {
    addInert(catalogue, "krlImageGleamBlur")
        .integer("blackPoint", {.from = 0, .to = 255, .example = 100}, "a level")
        .integer("whitePoint", {.from = 0, .to = 255, .example = 255}, "a level")
        .integer("blur", {.from = 0, .to = 50, .example = 10, .pixels = true}, "a radius in pixels")
        .symbol("blendMethod", allBlends(), refused("Gleam Blur invalid input blendMethod (Image)"),
                "a blend mode")
        .real("brightness", {.from = 0, .to = 4, .example = 1}, "a strength")
        .integer("transparency", {.from = 0, .to = 255, .example = 255}, "opacity; 255 is full")
        .colourList("colorList", {.scale = kLevelsPerPercent}, kColoursExample, "colours under percents")
        .symbol("colourMethod", colourSources(), refused("Gleam Blur invalid input colourMethod (Image)"),
                "where colour comes from")
        .symbol("colourOrAlpha", colourWithAlpha(), refused("Gleam Blur invalid input colourOrAlpha (Image)"),
                "colour, or alpha too")
        .inputFailure("Gleam Blur input failure (Image)")
        .failed("Failed Gleam Blur function (Image)");
}

void describeGleamZoom(Catalogue& catalogue) {
    addInert(catalogue, "krlImageGleamZoom")
        .integer("black", {.from = 0, .to = 255, .example = 100}, "a level")
        .integer("white", {.from = 0, .to = 255, .example = 255}, "a level")
        .point("zoomPoint", {}, "a place")
        .real("brightnessStrength", {.from = 0, .to = 4, .example = 1}, "a strength")
        .real("falloff", {.from = 0, .to = 2, .example = 1}, "a strength")
        .symbol("blendMethod", compositeBlends(), refused("Gleam Zoom invalid input blendMethod (Image)"),
                "a blend mode")
        .real("levelsBrightness", {.from = 0, .to = 4, .example = 1}, "a strength")
        .integer("transparency", {.from = 0, .to = 255, .example = 255}, "opacity; 255 is full")
        .colourList("colorList", {.scale = kLevelsPerPercent}, kColoursExample, "colours under percents")
        .symbol("colourMethod", colourSources(), refused("Gleam Zoom invalid input colourMethod (Image)"),
                "where colour comes from")
        .symbol("colourOrAlpha", colourWithAlpha(), refused("Gleam Zoom invalid input colourOrAlpha (Image)"),
                "colour, or alpha too")
        .symbol("quality", qualities(), refused("Gleam Zoom invalid input zoom input type (Image)"),
                "a quality")
        .inputFailure("Gleam Zoom input failure (Image)")
        .failed("Failed Gleam Zoom function (Image)");
}

void describeShadowHighlight(Catalogue& catalogue) {
    addInert(catalogue, "krlImageShadowHighlight")
        .real("shadowAmount", {.from = 0, .to = 1, .example = 0.5}, "a strength")
        .real("shadowTonalWidth", {.from = 0, .to = 1, .example = 0.5}, "a range of tones")
        .integer("shadowRadius", {.from = 0, .to = 50, .example = 10, .pixels = true}, "a radius in pixels")
        .real("highlightAmount", {.from = 0, .to = 1, .example = 0.5}, "a strength")
        .real("highlightTonalWidth", {.from = 0, .to = 1, .example = 0.5}, "a range of tones")
        .integer("highlightRadius", {.from = 0, .to = 50, .example = 10, .pixels = true},
                 "a radius in pixels")
        .inputFailure("Shadow Highlight input failure (Image)")
        .failed("Failed Shadow Highlight function (Image)");
}

void describeStars(Catalogue& catalogue) {
    addInert(catalogue, "krlImageStars")
        .summary("Leaves the picture as it is.")
        .failed("Failed Stars function (Image)");
}

void describeAdaptiveColourReduction(Catalogue& catalogue) {
    catalogue.add("krlImageAdaptiveColourReduction", leaveLoadedPicture<>)
        .summary("Leaves the picture as it is; a picture must be loaded.")
        .failed("Failed Adaptive Colour Reduction function (Image)")
        .inert();
}

void describeTones(Catalogue& catalogue) {
    catalogue.add("krlImageTones", leaveLoadedPicture<bool, Colour, float>)
        .summary("Checks its arguments and leaves the picture as it is; a picture must be loaded.")
        .symbol("toneName", {{"custom", 0}, {"sepia", 1}}, refused("Tones invalid tone name input (Image)"),
                "a tone")
        .colour("toneColour", Colour(112, 66, 20), "a colour")
        .real("toneStrength", {.from = 0, .to = 1, .example = 0.5}, "a strength")
        .inputFailure("Tones input failure (Image)")
        .failed("Failed Tones function (Image)")
        .inert();
}

}  // namespace krl
