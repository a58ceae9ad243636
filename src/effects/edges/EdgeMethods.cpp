#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/edges/Edges.h"
#include "effects/edges/Morphology.h"

/// Bindings of morphology and of the edge filters.
namespace krl {

namespace {

void addMorphology(Catalogue& catalogue) {
    catalogue.add(method("krlImageDilation", dilation)
                      .summary("Spreads dark areas: each colour takes the darkest around it.")
                      .integer("size", {.from = 0, .to = 20, .example = 3},
                               "pixels to each side; where a picture has transparency its colours darken too")
                      .inputFailure("Dilation input failure (Image)")
                      .failed("Failed Dilation function (Image)"));
    catalogue.add(method("krlImageErosion", erosion)
                      .summary("Spreads bright areas: each colour takes the brightest around it.")
                      .integer("size", {.from = 0, .to = 20, .example = 3},
                               "pixels to each side; where a picture has transparency its colours darken too")
                      .inputFailure("Erosion input failure (Image)")
                      .failed("Failed Erosion function (Image)"));
    catalogue.add(
        method("krlImageErodeWhite", erodeWhite)
            .summary("Shrinks a matte: alpha takes the most transparent around it.")
            .integer("distance", {.from = 0, .to = 20, .example = 3},
                     "pixels to eat away; to one side twice as many")
            .symbol("direction",
                    {{"all", ErodeDirection::All},
                     {"right", ErodeDirection::Right},
                     {"left", ErodeDirection::Left}},
                    refused("Erode White invalid input direction (Image)"),
                    "eats into edges all round, into left edges going right, or into right edges going left")
            .inputFailure("Erode White input failure (Image)")
            .failed("Failed Erode White function (Image)"));
}

void addEdges(Catalogue& catalogue) {
    catalogue.add(method("krlImageSobel", sobel)
                      .summary("Draws edges as dark lines on white.")
                      .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
                      .inputFailure("Sobel input failure (Image)")
                      .failed("Failed Sobel function (Image)"));
    catalogue.add(method("krlImageEmboss", emboss)
                      .summary("Lights the picture from one side as if it were a relief.")
                      .integer("strength", {.from = 1, .to = 50, .example = 8}, "depth of the relief")
                      .real("azimuth", {.from = 0, .to = 360, .example = 45},
                            "degrees round the compass that the light comes from")
                      .real("elevation", {.from = 0, .to = 90, .example = 30},
                            "degrees of the light above the picture; also the grey of what is flat")
                      .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
                      .inputFailure("Emboss input failure (Image)")
                      .failed("Failed Emboss function (Image)"));
    catalogue.add(
        method("krlImageCannyEdgeDetect", cannyEdgeDetect)
            .summary("Keeps the picture, inverted, along its strongest edges and clears the rest to white.")
            .integer("blurAmount", {.from = 0, .to = 20, .example = 2},
                     "softening before the search, in pixels")
            .integer("threshold", {.from = 0, .to = 255, .example = 60}, "how strong an edge must be to stay")
            .symbol("colourOrAlpha", colourOrAlpha(),
                    refused("Canny Edge Detect invalid colourOrAlpha input (Image)"), kTargetMeaning)
            .inputFailure("Canny Edge Detect input failure (Image)")
            .failed("Failed Canny Edge Detect function (Image)"));
    catalogue.add(
        method("krlImageGlowingEdges", glowingEdges)
            .summary("Turns edges into lines of neon on black.")
            .integer("size", {.from = 0, .to = 10, .example = 2},
                     "width of the lines, in pixels to each side")
            .integer("smoothness", {.from = 0, .to = 20, .example = 3},
                     "softening before the search, in pixels")
            .real("brightness", {.from = 0, .to = 10, .example = 2.5}, "factor on the light of the lines")
            .inputFailure("Glowing Edges input failure (Image)")
            .failed("Failed Glowing Edges function (Image)"));
}

}  // namespace

void describeEdgeMethods(Catalogue& catalogue) {
    addMorphology(catalogue);
    addEdges(catalogue);
}

}  // namespace krl
