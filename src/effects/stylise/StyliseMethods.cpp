#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/stylise/Stylise.h"

/// Bindings of the stylise effects.
namespace krl {

namespace {

constexpr const char* kChannelsMeaning = "all four channels, the three colours, or transparency alone";

void addVignette(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageVignette", vignette)
            .summary("Lets the picture fade into a colour, or out of sight, toward its edges.")
            .symbol("shape", {{"ellipse", VignetteShape::Ellipse}, {"rectangle", VignetteShape::Rectangle}},
                    refused("Vignette invalid shape input (Image)"), "outline of what stays clear")
            .colour("theColor", Colour(20, 12, 8), "what the edges fade into")
            .integer("transparency", {.from = 0, .to = 255, .example = 200},
                     "strength of the fade; 255 covers")
            .real("scaleX", {.from = 0, .to = 2, .example = 0.9}, "width of the shape; 1.0 is the picture's")
            .real("scaleY", {.from = 0, .to = 2, .example = 0.9}, "height of the shape; 1.0 is the picture's")
            .integer("offsetX", {.from = -100, .to = 100, .example = 0},
                     "shift to the right, in percent of the width")
            .integer("offsetY", {.from = -100, .to = 100, .example = 0},
                     "shift down, in percent of the height")
            .integer("blur", {.from = 0, .to = 200, .example = 60}, "softness of the shape's edge, in pixels")
            .symbol("colourOrAlpha", {{"RGB", VignetteTarget::RGB}, {"ALPHA", VignetteTarget::Alpha}},
                    refused("Vignette invalid colourOrAlpha type input (Image)"),
                    "fades into the colour, or into transparency")
            .symbol("invert", {{"false", false}, {"true", true}},
                    refused("Vignette invalid invert input (Image)"),
                    "covers the inside in place of the edges")
            .inputFailure("Vignette input failure (Image)")
            .failed("Failed Vignette function (Image)"));
}

}  // namespace

void describeStyliseMethods(Catalogue& catalogue) {
    catalogue.add(method("krlImageMosaic", mosaic)
                      .summary("Makes blocks of one colour.")
                      .integer("amount", {.from = 2, .to = 100, .example = 12}, "side of a block, in pixels")
                      .symbol("colourOrAlpha", anyChannels(), kElseAlpha, kChannelsMeaning)
                      .inputFailure("Mosaic input failure (Image)")
                      .failed("Failed Mosaic function (Image)"));
    catalogue.add(method("krlImageOilPaint", oilPaint)
                      .summary("Paints over the picture in strokes of its own colours.")
                      .integer("brushSize", {.from = 1, .to = 5, .example = 4},
                               "pixels that a stroke reaches to each side")
                      .integer("intensity", {.from = 10, .to = 255, .example = 30},
                               "levels of brightness told apart; few give broad strokes")
                      .inputFailure("Oil Paint input failure (Image)")
                      .failed("Failed Oil Paint function (Image)"));
    catalogue.add(
        method("krlImageFragment", fragment)
            .summary("Lays four faint copies of the picture around its place.")
            .integer("distance", {.from = 0, .to = 100, .example = 8}, "pixels that each copy is off")
            .symbol("colourOrAlpha", anyChannels(), refused("Fragment invalid colourOrAlpha input (Image)"),
                    kWeighedMeaning)
            .inputFailure("Fragment input failure (Image)")
            .failed("Failed Fragment function (Image)"));
    catalogue.add(
        method("krlImageTile", tile)
            .summary("Cuts the picture into tiles that slip out of place.")
            .integer("tileW", {.from = 1, .to = 200, .example = 24}, "width of a tile, in pixels")
            .integer("tileH", {.from = 1, .to = 200, .example = 24}, "height of a tile, in pixels")
            .integer("random", {.from = 1, .to = 100, .example = 14}, "pixels of play; 1 is none")
            .integer("seed", {.from = 0, .to = 32767, .example = 7}, "number that decides how the tiles slip")
            .symbol("colourOrAlpha", anyChannels(), refused("Tile invalid colourOrAlpha input (Image)"),
                    kChannelsMeaning)
            .inputFailure("Tile input failure (Image)")
            .failed("Failed Tile function (Image)")
            .dependsOnBands());
    addVignette(catalogue);
}

}  // namespace krl
