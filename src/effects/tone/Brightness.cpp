#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/tone.h"

namespace krl {

namespace {

/// The wide path, which no method takes: a saturating step by the low byte of the magnitude.
Status brightnessWide(ImageEngine& engine, int32_t brightnessInt, ChannelTarget target) {
    const bool darken = brightnessInt < 0;
    const auto by = static_cast<uint8_t>(darken ? wrapSubtract(0, brightnessInt) : brightnessInt);
    const Pixel step = target == ChannelTarget::RGB ? Pixel{by, by, by, 0} : Pixel{0, 0, 0, by};
    return shiftSaturated(engine, step, darken);
}

}  // namespace

/// Adds a number to every byte of the target. The sum wraps at 32 bits before it is limited.
Status brightness(ImageEngine& engine, int32_t brightnessInt, ChannelTarget target) {
    if (engine.useWidePath()) return brightnessWide(engine, brightnessInt, target);
    return applyCurve(engine, target,
                      byteCurve([=](int32_t i) { return clampByte(wrapAdd(i, brightnessInt)); }));
}

void describeBrightness(Catalogue& catalogue) {
    catalogue.add("krlImageBrightness", brightness)
        .summary("Lightens or darkens by a fixed amount.")
        .words("lighten, darken, brighten, bright, dark, light")
        .integer("brightnessInt", {.from = -255, .to = 255, .example = 40, .neutral = 0}, "levels to add")
        .symbol("colourOrAlpha", colourOrAlpha(), refused("Brightness invalid colourOrAlpha input (Image)"),
                kTargetMeaning)
        .inputFailure("Brightness input failure (Image)")
        .worksPerPixel()
        .failed("Failed Brightness function (Image)");
}

}  // namespace krl
