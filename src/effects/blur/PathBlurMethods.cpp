#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/blur/PathBlur.h"

/// Bindings of the blurs along a path.
namespace krl {

namespace {

/// A target that none of the symbols gives: these methods pass it on without a word.
constexpr UnknownSymbol kUnset = otherwise(ChannelTarget{});

}  // namespace

void describePathBlurMethods(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageMotionBlur", motionBlur)
            .summary("Smears the picture along a straight line.")
            .integer("distance", {.from = 0, .to = 100, .example = 24}, "pixels that a trail is long")
            .integer("angle", {.from = 0, .to = 360, .example = 20},
                     "degrees, clockwise from the right, in which each pixel looks for its trail")
            .symbol("blurCount", {{"single", BlurCount::Single}, {"double", BlurCount::Double}},
                    otherwise(BlurCount::Double),
                    "a trail to one side, or a second one in the opposite direction; any other symbol "
                    "is double")
            .symbol("colourOrAlpha", anyChannels(), kUnset, kWeighedMeaning)
            .showing("RGB")
            .inputFailure("MotionBlur input failure (Image)")
            .failed("Failed Motion Blur function (Image)"));
    catalogue.add(method("krlImageRadialBlur", radialBlur)
                      .summary("Turns the picture about a point while it is exposed.")
                      .integer("radialLength", {.from = 0, .to = 45, .example = 6},
                               "degrees to each side; one sample is taken for each")
                      .point("radialPoint", {.x = 0.5, .y = 0.5}, "what the picture turns about")
                      .symbol("colourOrAlpha", anyChannels(), kUnset, kWeighedMeaning)
                      .showing("RGB")
                      .inputFailure("Radial Blur input failure (Image)")
                      .failed("Failed Radial Blur function (Image)"));
    catalogue.add(
        method("krlImageZoomBlur", zoomBlur)
            .summary("Zooms while the picture is exposed: sharp at a point, more smeared the further out.")
            .integer("zoomLength", {.from = 0, .to = 200, .example = 60},
                     "pixels of smear at a distance of one whole diagonal from the point")
            .point("zoomPoint", {.x = 0.5, .y = 0.5}, "what stays sharp")
            .symbol("direction", {{"in", ZoomDirection::In}, {"out", ZoomDirection::Out}},
                    refused("Zoom Blur invalid input direction (Image)"),
                    "gathers from further out, or from nearer the point")
            .symbol("colourOrAlpha", anyChannels(), kUnset, kWeighedMeaning)
            .showing("RGB")
            .needsEngine()
            .inputFailure("Zoom Blur input failure (Image)")
            .failed("Failed Zoom Blur function (Image)"));
}

}  // namespace krl
