#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/warp/DisplacementMap.h"
#include "effects/warp/Twirl.h"
#include "effects/warp/Waves.h"

/// Bindings of the warps.
namespace krl {

namespace {

constexpr const char* kQualityMeaning = "the nearest pixel, or a mean of the four around the place";
constexpr const char* kFrequencyMeaning =
    "degrees of the wave for each pixel; 360 / frequency pixels make one wave";

std::vector<SymbolChoice> qualities() {
    return {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}};
}

std::vector<SymbolChoice> mapOptions() {
    return {{"red", MapOption::Red},
            {"green", MapOption::Green},
            {"blue", MapOption::Blue},
            {"alpha", MapOption::Alpha},
            {"greyscale", MapOption::Greyscale},
            {"luminosity", MapOption::Luminosity},
            {"hue", MapOption::Hue},
            {"saturation", MapOption::Saturation},
            {"lightness", MapOption::Lightness},
            {"off", MapOption::Off}};
}

void addWaves(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageWaves", waves)
            .summary("Shifts rows and columns along waves, as seen through moving water.")
            .real("amplitude", {.from = -100, .to = 100, .example = 12}, "height of the waves in pixels")
            .real("frequency", {.from = 0, .to = 45, .example = 3}, kFrequencyMeaning)
            .real("horizPhase", {.from = -6.3, .to = 6.3, .example = 0},
                  "where the wave of the rows begins, in radians")
            .real("vertPhase", {.from = -6.3, .to = 6.3, .example = 1},
                  "where the wave of the columns begins, in radians")
            .integer("hPercent", {.from = 0, .to = 100, .example = 100},
                     "percent of the amplitude for the rows; 0 leaves them in place")
            .integer("vPercent", {.from = 0, .to = 100, .example = 60},
                     "percent of the amplitude for the columns; 0 leaves them in place")
            .symbol("edgeType", {{"wrap", WaveEdge::Wrap}, {"repeat", WaveEdge::Repeat}},
                    refused("Waves invalid edge type input (Image)"),
                    "what comes in from beyond the edge: the other side, or the pixels of the edge")
            .thenCompare()
            .symbol("quality", qualities(), refused("Waves invalid quality input (Image)"), kQualityMeaning)
            .showing("bilinear")
            .thenCompare()
            .symbol("colourOrAlpha", anyChannels(), refused("Waves invalid colourOrAlpha input (Image)"),
                    kChannelsMeaning)
            .inputFailure("Waves input failure (Image)")
            .failed("Failed Waves function (Image)"));
    catalogue.add(method("krlImageBlockWaves", blockWaves)
                      .summary("Breaks the picture into blocks along waves, as seen through glass bricks.")
                      .real("amplitude", {.from = 0, .to = 100, .example = 12},
                            "how far a place is moved, in pixels; below 0 is 0")
                      .real("frequency", {.from = 0, .to = 45, .example = 6}, kFrequencyMeaning)
                      .real("horizPhase", {.from = -6.3, .to = 6.3, .example = 0},
                            "where the wave across begins at the middle, in radians")
                      .real("vertPhase", {.from = -6.3, .to = 6.3, .example = 1.5},
                            "where the wave downward begins at the middle, in radians")
                      .symbol("quality", qualities(), refused("Block Waves invalid quality input (Image)"),
                              kQualityMeaning)
                      .showing("bilinear")
                      .thenCompare()
                      .symbol("colourOrAlpha", anyChannels(),
                              refused("Block Waves invalid colourOrAlpha input (Image)"), kChannelsMeaning)
                      .inputFailure("Block Waves input failure (Image)")
                      .failed("Failed Block Waves function (Image)"));
    catalogue.add(method("krlImageCircularWaves", circularWaves)
                      .summary("Ripples that run around a point, as where a stone fell into a pond.")
                      .real("amplitude", {.from = 0, .to = 100, .example = 8},
                            "how far a place is moved, in pixels; below 0 is 0")
                      .real("frequency", {.from = 0, .to = 45, .example = 6}, kFrequencyMeaning)
                      .real("phase", {.from = -6.3, .to = 6.3, .example = 0},
                            "where the ripple begins at the point, in radians; step it to make rings run")
                      .point("origin", {.x = 0.5, .y = 0.5}, "the middle of the rings")
                      .symbol("quality", qualities(), refused("Circular Waves invalid quality input (Image)"),
                              kQualityMeaning)
                      .showing("bilinear")
                      .thenCompare()
                      .symbol("colourOrAlpha", anyChannels(),
                              refused("Circular Waves invalid colourOrAlpha input (Image)"), kChannelsMeaning)
                      .inputFailure("Circular Waves input failure (Image)")
                      .failed("Failed Circular Waves function (Image)"));
}

void addTurnsAndMaps(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageTwirl", twirl)
            .summary("Turns the picture around its middle, the more the nearer to it.")
            .integer("twirl", {.from = -200, .to = 200, .example = 30},
                     "strength: tenths of a radian over half the picture's width; its sign is the way round")
            .symbol("quality", qualities(), refused("Twirl invalid quality input (Image)"), kQualityMeaning)
            .showing("bilinear")
            .thenCompare()
            .symbol("colourOrAlpha", anyChannels(), refused("Twirl invalid colourOrAlpha input (Image)"),
                    kChannelsMeaning)
            .inputFailure("Twirl input failure (Image)")
            .failed("Failed Twirl function (Image)"));

    std::vector<SymbolChoice> secondOptions = mapOptions();
    secondOptions.emplace_back("same_as_map_one", MapOption::SameAsMapOne);
    catalogue.add(
        method("krlImageDisplacementMapComposite", displacementMapComposite)
            .summary("Moves each pixel by what two pictures say: one across, one up and down.")
            .image("dMapOne", {}, "portrait.png",
                   "map of the shift across, of the picture's size; its transparency weakens it")
            .symbol("colouringOptionOne", mapOptions(),
                    refused("Displacement Map Composite invalid input colouring option one (Image)"),
                    "what of the first map counts: bright reads from the right, dark from the left")
            .showing("luminosity")
            .image("dMapTwo", {}, "portrait.png",
                   "map of the shift up and down, of the picture's size; its transparency weakens it")
            .symbol("colouringOptionTwo", std::move(secondOptions),
                    refused("Displacement Map Composite invalid input colouring option two (Image)"),
                    "what of the second map counts: bright reads from above, dark from below")
            .showing("same_as_map_one")
            .real("hDistance", {.from = 0, .to = 200, .example = 60},
                  "twice the longest shift across, in pixels; below 0 is 0")
            .real("vDistance", {.from = 0, .to = 200, .example = 40},
                  "twice the longest shift up and down, in pixels; below 0 is 0")
            .symbol("edgeOption", {{"wrap", MapEdge::Wrap}, {"repeat", MapEdge::Repeat}},
                    refused("Displacement Map Composite invalid input edge option (Image)"),
                    "beyond the edge, wrap shows the pixels of the edge and repeat the other side")
            .inputFailure("Displacement Map Composite input failure (Image)")
            .failed("Failed Displacement Map Composite function (Image)"));
}

}  // namespace

void describeWarpMethods(Catalogue& catalogue) {
    addWaves(catalogue);
    addTurnsAndMaps(catalogue);
}

}  // namespace krl
