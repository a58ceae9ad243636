#include <algorithm>
#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/ExactFunctions.h"
#include "effects/composite/GleamChoices.h"
#include "effects/composite/GleamStages.h"
#include "effects/composite/ZoomRays.h"
#include "kernels/blend/BlockPixels.h"
#include "krlimage/composite.h"

namespace krl {

namespace {

/// What is left of a ray after one step where `falloff` is left after 30: the 30th root, 0 for a number below
/// 0, which has none.
float stepFalloff(float falloff) {
    const auto step = static_cast<float>(exactPower(static_cast<double>(falloff), 0.03333333507180214));
    return step >= 1 ? 0.9998999834060669f : step > 0 ? step : 0.0f;
}

}  // namespace

/// Lays `foreground` over the image, and over both the rays that the foreground's bright parts cast from
/// `zoomPoint` to the border.
Status gleamZoomComposite(ImageEngine& engine, const SecondImage& foreground,
                          const GleamZoomSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    if (!engine.hasSizeOf(foreground)) return kStatusForegroundSize;
    if (!foreground.pixels) return kStatusNoImage;
    const ImageBuffer& image = *engine.buffer();
    const GleamStages stages(engine, foreground,
                             {settings.compositeBlendMethod, settings.compositeTransparency, settings.black,
                              settings.white, settings.blendMethod, settings.levelsBrightness,
                              settings.transparency, settings.colorList, settings.colourMethod});
    Scratch<Pixel> light(blockPixels(image));
    if (Status status = stages.extractLight(light)) return status;
    const RaySettings rays{settings.zoomPoint, std::max(0.0f, settings.brightnessStrength),
                           stepFalloff(settings.falloff), settings.userDistance};
    const auto cast = settings.quality == SampleQuality::Antialiased ? castZoomRaysAntialiased : castZoomRays;
    cast(engine, light, image.width, image.height, rays);
    return stages.finish(light);
}

void describeGleamZoomComposite(Catalogue& catalogue) {
    catalogue.add("krlImageGleamZoomComposite", gleamZoomComposite)
        .summary("Lays a picture over this one and draws its bright parts out into rays.")
        .words("light rays, god rays, sunbeams, shine, beams")
        .image("foreground", kCompositeSizes, "landscape.png", "the picture on top, of this one's size")
        .symbol("compositeBlendMethod", lightBlends(),
                refused("Gleam Blur invalid input compositeBlendMethod (Image)"),
                "how the foreground meets this picture")
        .failsWith("Gleam Blur input failure (Image)")
        .integer("compositeTransparency", {.from = 0, .to = 255, .example = 255, .least = 0, .most = 255},
                 kOpacityOfFront)
        .integer("black", {.from = 0, .to = 255, .example = 170, .least = 0, .most = 255}, kBlackMeaning)
        .integer("white", {.from = 0, .to = 255, .example = 250, .least = 0, .most = 255}, kWhiteMeaning)
        .point("zoomPoint", {.x = 0.5, .y = 0.4}, "where the rays come from; it may lie outside")
        .real("brightnessStrength", {.from = 0, .to = 4, .example = 1.0, .least = 0},
              "how much each bright pixel gives to a ray")
        .real("falloff", {.from = 0, .to = 1, .example = 0.4, .most = 1},
              "what is left of a ray after 30 pixels; 1.0 reaches the border")
        .symbol("blendMethod", lightBlends(), refused("Gleam Zoom invalid input blendMethod (Image)"),
                "how the light is laid on")
        .showing("screen")
        .real("levelsBrightness", {.from = 0, .to = 1, .example = 0.1, .least = 0, .most = 1}, kGainMeaning)
        .integer("transparency", {.from = 0, .to = 255, .example = 230, .least = 0, .most = 255},
                 kOpacityOfLight)
        .colourList("colorList", kLevelKeys, warmRamp(), kRampMeaning)
        .symbol("colourMethod", colourMethods(), refused("Gleam Zoom invalid input colourMethod (Image)"),
                kColourMethodMeaning)
        .thenCompare()
        .symbol("quality",
                {{"standard", SampleQuality::Standard}, {"antialiased", SampleQuality::Antialiased}},
                refused("Gleam Zoom invalid input zoom input type (Image)"),
                "as it is, or smoother and about four times as slow")
        .integer("userDistance", {.from = 1, .to = 200, .example = 30, .pixels = true},
                 "pixels from the point within which rays are already bright; the light is divided by it, so "
                 "that longer is fainter")
        .inputFailure("Gleam Zoom input failure (Image)")
        .failed("Failed Gleam Zoom function (Image)")
        .keepsLocksOnFailure();
}

}  // namespace krl
