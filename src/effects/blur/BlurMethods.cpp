#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/blur/BlurEffects.h"
#include "effects/blur/ChromaBlur.h"
#include "effects/blur/Sharpen.h"

/// Bindings of the blurs and of unsharp masking.
namespace krl {

namespace {

constexpr NumberRange kRadius{.from = 0, .to = 60, .example = 12};
constexpr const char* kRadiusMeaning = "reach of the blur in pixels; 0 or less blurs nothing";

void addPlainBlurs(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageFastGaussianBlur", fastGaussianBlur)
            .summary("Softens the picture; a wide blur costs no more than a narrow one.")
            .integer("radius", kRadius, kRadiusMeaning)
            .symbol("colourOrAlpha",
                    {{"RGBA", ChannelTarget::RGBA},
                     {"RGB", ChannelTarget::RGB},
                     {"Alpha", ChannelTarget::Alpha},
                     {"Single", ChannelTarget::Single}},
                    otherwise(ChannelTarget::Single),
                    "colours and transparency, colours, transparency, or blue alone; any other symbol "
                    "is taken as blue alone")
            .inputFailure("Fast Gaussian Blur input failure (Image)")
            .failed("Failed Fast Gaussian Blur function (Image)"));
    catalogue.add(
        method("krlImageBlurProRGB", blurProRGB)
            .summary("Softens red, green and blue, each by its own radius.")
            .integer("blurR", {.from = 0, .to = 60, .example = 16}, "radius for red; 0 leaves it sharp")
            .integer("blurG", {.from = 0, .to = 60, .example = 0}, "radius for green")
            .integer("blurB", {.from = 0, .to = 60, .example = 6}, "radius for blue")
            .inputFailure("Blur Pro RGB input failure (Image)")
            .failed("Failed Blur Pro RGB function (Image)"));
    catalogue.add(method("krlImageOneChannelFeather", oneChannelFeather)
                      .summary("Softens the edge of the transparency; colours stay sharp.")
                      .integer("radius", kRadius, kRadiusMeaning)
                      .symbol("quality",
                              {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}},
                              refused("One Channel Feather invalid input quality (Image)"),
                              "either gives the same picture")
                      .inputFailure("One Channel Feather input failure (Image)")
                      .failed("Failed One Channel Feather function (Image)"));
}

void addChromaBlurs(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageBlurProYUV", blurProYUV)
            .summary("Softens brightness and the two colour differences, each by its own radius.")
            .integer("blurY", {.from = 0, .to = 60, .example = 0}, "radius for brightness")
            .integer("blurU", {.from = 0, .to = 60, .example = 12}, "radius for blue less brightness")
            .integer("blurV", {.from = 0, .to = 60, .example = 12}, "radius for red less brightness")
            .inputFailure("Blur Pro YUV input failure (Image)")
            .failed("Failed Blur Pro YUV function (Image)"));
    catalogue.add(method("krlImageYUVBlur", yuvBlur)
                      .summary("Softens colour and keeps brightness sharp, as against colour noise.")
                      .symbol("blurType",
                              {{"yuv_horizontal", ChromaBlurType::Horizontal},
                               {"yuv_vertical", ChromaBlurType::Vertical},
                               {"yuv_box", ChromaBlurType::Box},
                               {"yuv_gaussian", ChromaBlurType::Gaussian}},
                              refused("YUVBlur invalid input blur type (Image)"),
                              "along rows, down columns, both, or a softer window")
                      .showing("yuv_gaussian")
                      .integer("blurAmount", kRadius, "pixels to each side; 0 or less blurs nothing")
                      .inputFailure("YUVBlur input failure (Image)")
                      .failed("Failed YUVBlur function (Image)")
                      .dependsOnBands());
}

void addLooks(Catalogue& catalogue) {
    catalogue.add(method("krlImageDefocus", defocus)
                      .summary("Softens the picture and lets highlights bloom.")
                      .integer("blur", kRadius, kRadiusMeaning)
                      .real("bloom", {.from = 0, .to = 0.8, .example = 0.25},
                            "how far light swells: all colour is divided by what this leaves of 1")
                      .symbol("colourOrAlpha", {{"RGBA", ChannelTarget::RGBA}, {"RGB", ChannelTarget::RGB}},
                              refused("Defocus invalid input colourOrAlpha (Image)"),
                              "whether transparency is softened too")
                      .inputFailure("Defocus input failure (Image)")
                      .failed("Failed Defocus function (Image)"));
    catalogue.add(
        method("krlImageDiffuse", diffuse)
            .summary("Lays the sharp picture over its blur, as a soft-focus filter does.")
            .integer("blur", kRadius, kRadiusMeaning)
            .real("opacity", {.from = 0, .to = 1, .example = 0.5}, "share of the sharp picture")
            .symbol("quality",
                    {{"standard", SampleQuality::Standard}, {"antialiased", SampleQuality::Antialiased}},
                    refused("Diffuse invalid input quality (Image)"), "either gives the same picture")
            .symbol(
                "colourOrAlpha",
                {{"rgba", ChannelTarget::RGBA}, {"rgb", ChannelTarget::RGB}, {"alpha", ChannelTarget::Alpha}},
                refused("Diffuse invalid input colourOrAlpha (Image)"),
                "colours and transparency, colours, or transparency alone")
            .inputFailure("Diffuse input failure (Image)")
            .failed("Failed Diffuse function (Image)"));
    catalogue.add(method("krlImageBlurColourReplace", blurColourReplace)
                      .summary("Multiplies the picture by a colour; in spite of its name it blurs nothing.")
                      .colour("pColor", Colour(255, 196, 120), "colour that white becomes")
                      .inputFailure("Blur Colour Replace input failure (Image)")
                      .failed("Failed Blur Colour Replace function (Image)"));
}

void addSharpening(Catalogue& catalogue) {
    constexpr NumberRange amount{.from = 0, .to = 5, .example = 1.5};
    constexpr NumberRange threshold{.from = 0, .to = 60, .example = 6};
    constexpr const char* amountMeaning = "how much of the difference from the blur is added";
    constexpr const char* thresholdMeaning =
        "twice the difference, in levels, from which there is an edge to sharpen";
    catalogue.add(method("krlImageSharpen", sharpen)
                      .summary("Sharpens edges by what a blur takes from them.")
                      .integer("radius", {.from = 0, .to = 60, .example = 5}, "reach of the blur in pixels")
                      .real("amount", amount, amountMeaning)
                      .integer("threshold", threshold, thresholdMeaning)
                      .symbol("colourOrAlpha", anyChannels(), kElseAlpha,
                              "colours and transparency, colours, or transparency alone")
                      .showing("RGB")
                      .inputFailure("Sharpen input failure (Image)")
                      .failed("Failed Sharpen function (Image)"));
    catalogue.add(method("krlImageSharpenBrightness", sharpenBrightness)
                      .summary("Sharpens brightness alone, so that colour noise stays as it is.")
                      .integer("radius", {.from = 0, .to = 60, .example = 5}, "reach of the blur in pixels")
                      .real("amount", amount, amountMeaning)
                      .integer("threshold", threshold, thresholdMeaning)
                      .inputFailure("Sharpen Brightness input failure (Image)")
                      .failed("Failed Sharpen Brightness function (Image)"));
}

}  // namespace

void describeBlurMethods(Catalogue& catalogue) {
    addPlainBlurs(catalogue);
    addChromaBlurs(catalogue);
    addLooks(catalogue);
    addSharpening(catalogue);
}

}  // namespace krl
