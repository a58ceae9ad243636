#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/colour.h"

namespace krl {

/// Takes from each channel what the light lacks: out = in - (255 - light - intensity). The intensity is
/// limited to 0..255.
Status ambientLight(ImageEngine& engine, Colour myColor, int32_t intensity) {
    const int32_t lift = clampTo(intensity, 0, 255);
    const auto missing = [=](uint8_t light) { return clampByte(255 - light - lift); };
    const Pixel loss = {missing(myColor.blue()), missing(myColor.green()), missing(myColor.red()), 0};
    if (engine.useWidePath()) return shiftSaturated(engine, loss, true);
    const auto dimmed = [](uint8_t by) { return byteCurve([=](int32_t i) { return clampByte(i - by); }); };
    return applyCurves(engine, {dimmed(loss.blue), dimmed(loss.green), dimmed(loss.red)});
}

void describeAmbientLight(Catalogue& catalogue) {
    catalogue.add("krlImageAmbientLight", ambientLight)
        .summary("Lights the picture with one colour only.")
        .words("tint, filter, gel, colour cast, light")
        .colour("myColor", Colour(255, 222, 190), "colour of the light; white changes nothing")
        .integer("intensity", {.from = 0, .to = 255, .example = 10, .least = 0, .most = 255, .neutral = 255},
                 "levels added to the light")
        .inputFailure("Ambient Light input failure (Image)")
        .worksPerPixel()
        .failed("Failed Ambient Light function (Image)");
}

}  // namespace krl
