#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/colour.h"

namespace krl {

/// Multiplies the picture by a colour, all on 0..1: out = in * colour.
Status blurColourReplace(ImageEngine& engine, Colour colour) {
    if (engine.imageStatus()) return kStatusRefused;
    const auto scaledBy = [](uint8_t level) {
        const auto share = static_cast<float>(level / 255.0);
        return byteCurve([=](int32_t i) { return truncatedByte(share * (i / 255.0) * 255.0); });
    };
    const ColourCurves curves = {scaledBy(colour.blue()), scaledBy(colour.green()), scaledBy(colour.red())};
    const ChannelCurves channels = curves.byChannel();
    return runSpansHere(
        engine, [&](Pixel* first, Pixel* last) { applyCurves(first, last, curves); }, &channels);
}

void describeBlurColourReplace(Catalogue& catalogue) {
    catalogue.add("krlImageBlurColourReplace", blurColourReplace)
        .summary("Multiplies the picture by a colour; in spite of its name it blurs nothing.")
        .words("multiply, tint, colour")
        .colour("pColor", Colour(255, 196, 120), "colour that white becomes")
        .inputFailure("Blur Colour Replace input failure (Image)")
        .worksPerPixel()
        .failed("Failed Blur Colour Replace function (Image)");
}

}  // namespace krl
