#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/composite/Gleam.h"
#include "effects/composite/GleamZoom.h"
#include "effects/composite/LightSpill.h"
#include "effects/composite/OuterGlow.h"

/// Bindings of the gleams, light spill and outer glow.
namespace krl {

namespace {

constexpr const char* kOpacityOfFront =
    "opacity of the foreground, 255 being full, on top of its own transparency";
constexpr const char* kOpacityOfLight = "opacity of the light, 255 being full";
constexpr const char* kBlackMeaning = "level of the foreground below which there is no light";
constexpr const char* kWhiteMeaning = "level from which the light is full";
constexpr const char* kGainMeaning = "0.0 leaves the light as it is, 1.0 drives all of it to white";
constexpr const char* kRampMeaning =
    "colours of the light by its level, in percent; one colour tints, none is grey";

/// Positions in percent become image levels as they are read.
constexpr ListKeys kLevelKeys{false, kLevelsPerPercent};

std::vector<SymbolChoice> colourMethods() {
    return {{"from_image", GleamColour::FromImage}, {"colourise_image", GleamColour::ColouriseImage}};
}

std::vector<ColourStop> warmRamp() {
    return {{0, Colour(0, 0, 0)}, {50, Colour(230, 110, 20)}, {100, Colour(255, 245, 200)}};
}

void addGleams(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageGleamBlurComposite", gleamBlurComposite)
            .summary("Lays a picture over this one and lets its bright parts glow softly.")
            .image("foreground", kCompositeSizes, "landscape.png", "the picture on top, of this one's size")
            .symbol("compositeBlendMethod", compositeBlends(),
                    refused("Gleam Blur invalid input compositeBlendMethod (Image)"),
                    "how the foreground meets this picture")
            .showing("normal")
            .integer("compositeTransparency", {.from = 0, .to = 255, .example = 255}, kOpacityOfFront)
            .integer("blackPoint", {.from = 0, .to = 255, .example = 120}, kBlackMeaning)
            .integer("whitePoint", {.from = 0, .to = 255, .example = 240}, kWhiteMeaning)
            .integer("blur", {.from = 0, .to = 100, .example = 25}, "how far the light spreads, in pixels")
            .symbol("blendMethod", compositeBlends(), refused("Gleam Blur invalid input blendMethod (Image)"),
                    "how the light is laid on")
            .showing("screen")
            .real("brightness", {.from = 0, .to = 1, .example = 0.2}, kGainMeaning)
            .integer("transparency", {.from = 0, .to = 255, .example = 220}, kOpacityOfLight)
            .colourList("colorList", kLevelKeys, warmRamp(), kRampMeaning)
            .symbol("colourMethod", colourMethods(), refused("Gleam Blur invalid input colourMethod (Image)"),
                    "light in the foreground's own colours, or in those of the list")
            .inputFailure("Gleam Blur input failure (Image)")
            .failed("Failed Gleam Blur function (Image)")
            .keepsLocksOnFailure());
    catalogue.add(
        method("krlImageGleamZoomComposite", gleamZoomComposite)
            .summary("Lays a picture over this one and draws its bright parts out into rays.")
            .image("foreground", kCompositeSizes, "landscape.png", "the picture on top, of this one's size")
            .symbol("compositeBlendMethod", lightBlends(),
                    refused("Gleam Blur invalid input compositeBlendMethod (Image)"),
                    "how the foreground meets this picture")
            .failsWith("Gleam Blur input failure (Image)")
            .integer("compositeTransparency", {.from = 0, .to = 255, .example = 255}, kOpacityOfFront)
            .integer("black", {.from = 0, .to = 255, .example = 170}, kBlackMeaning)
            .integer("white", {.from = 0, .to = 255, .example = 250}, kWhiteMeaning)
            .point("zoomPoint", {.x = 0.5, .y = 0.4}, "where the rays come from; it may lie outside")
            .real("brightnessStrength", {.from = 0, .to = 4, .example = 1.0},
                  "how much each bright pixel gives to a ray; below 0 is 0")
            .real("falloff", {.from = 0, .to = 1, .example = 0.4},
                  "what is left of a ray after 30 pixels; 1.0 reaches the border")
            .symbol("blendMethod", lightBlends(), refused("Gleam Zoom invalid input blendMethod (Image)"),
                    "how the light is laid on")
            .showing("screen")
            .real("levelsBrightness", {.from = 0, .to = 1, .example = 0.1}, kGainMeaning)
            .integer("transparency", {.from = 0, .to = 255, .example = 230}, kOpacityOfLight)
            .colourList("colorList", kLevelKeys, warmRamp(), kRampMeaning)
            .symbol("colourMethod", colourMethods(), refused("Gleam Zoom invalid input colourMethod (Image)"),
                    "light in the foreground's own colours, or in those of the list")
            .thenCompare()
            .symbol("quality",
                    {{"standard", SampleQuality::Standard}, {"antialiased", SampleQuality::Antialiased}},
                    refused("Gleam Zoom invalid input zoom input type (Image)"),
                    "as it is, or smoother and about four times as slow")
            .integer("userDistance", {.from = 1, .to = 200, .example = 30},
                     "pixels from the point within which rays are already bright; the sum counts by it, so "
                     "that longer is fainter")
            .inputFailure("Gleam Zoom input failure (Image)")
            .failed("Failed Gleam Zoom function (Image)")
            .keepsLocksOnFailure());
}

void addSpillAndGlow(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageLightSpillComposite", lightSpillComposite)
            .summary("Puts a cut-out picture in place and lets this one's light bleed over its edges.")
            .image("background", {}, "logo.png", "the cut-out picture, of this one's size")
            .integer("blur", {.from = 0, .to = 100, .example = 20}, "how far the light reaches, in pixels")
            .symbol("blendMethod", lightBlends(),
                    refused("Light Spill Composite invalid input blendMethod (Image)"),
                    "how the light is laid on the cut-out")
            .showing("screen")
            .inputFailure("Light Spill Composite input failure (Image)")
            .failed("Failed Light Spill Composite function (Image)")
            .asksPlayer()
            .keepsLocksOnFailure());

    const auto hasEntries = [](const ArgumentValue& colours) { return !colours.keys.empty(); };
    catalogue.add(
        method("krlImageOuterGlow", outerGlow)
            .summary("Turns the picture's shape into a coloured halo with a coloured core, for titles.")
            .integer("core_feather", {.from = 0, .to = 50, .example = 3}, "softness of the core's edge")
            .integer("expand_blur", {.from = 0, .to = 50, .example = 10}, "how far the shape grows")
            .integer("outer_blur", {.from = 0, .to = 100, .example = 30}, "softness of the halo")
            .colourList("outerColours", {}, {{0, Colour(120, 0, 160)}, {100, Colour(255, 170, 40)}},
                        "colours of the halo by transparency, in percent; one colour fills it")
            .mustPass(hasEntries, "Outer Glow, empty outer colour list (Image)")
            .colourList("coreColours", {}, {{100, Colour(255, 255, 240)}},
                        "colours of the core by transparency, in percent; one colour fills it")
            .mustPass(hasEntries, "Outer Glow, empty core colour list (Image)")
            .integer("intensity", {.from = 0, .to = 255, .example = 180},
                     "level at which the halo's colours are full; lower is brighter")
            .integer("core_transparency", {.from = 0, .to = 255, .example = 0},
                     "0 keeps the core whole, 255 leaves the halo alone")
            .symbol("quality", {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}},
                    refused("Outer Glow invalid input quality (Image)"), "makes no difference")
            .inputFailure("Outer Glow input failure (Image)")
            .failed("Failed Outer Glow function (Image)"));
}

}  // namespace

void describeGlowMethods(Catalogue& catalogue) {
    addGleams(catalogue);
    addSpillAndGlow(catalogue);
}

}  // namespace krl
