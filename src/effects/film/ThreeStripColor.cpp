#include "catalogue/Catalogue.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// How much dye a separation lets through: none below `expand`, and from there on the rest of the scale
/// spread over all of it.
ByteCurve dyeCurve(int32_t expand) {
    return byteCurve([=](int32_t separation) {
        const int32_t i = 255 - separation;
        return i < expand ? 0 : truncate((double(i) - expand) * (256.0 / (256.0 - expand)));
    });
}

/// The dye of a colour: a separation is what the colour has beyond the mean of the other two.
int32_t dyeOf(const ByteCurve& curve, int32_t own, int32_t others) {
    return curve[clampByte(own - (others >> 1))];
}

}  // namespace

/// Prints each colour through the dyes of the other two: out = in * (dye + dye) / 512. Any expand is allowed;
/// 256 shuts a dye.
Status threeStripColor(ImageEngine& engine, int32_t expandRed, int32_t expandGreen, int32_t expandBlue) {
    const ByteCurve blueDye = dyeCurve(expandBlue), greenDye = dyeCurve(expandGreen),
                    redDye = dyeCurve(expandRed);
    return forEachPixel(engine, [&](Pixel& p) {
        const int32_t blue = dyeOf(blueDye, p.blue, p.red + p.green);
        const int32_t green = dyeOf(greenDye, p.green, p.red + p.blue);
        const int32_t red = dyeOf(redDye, p.red, p.green + p.blue);
        p.blue = static_cast<uint8_t>((red + green) * p.blue >> 9);
        p.green = static_cast<uint8_t>((red + blue) * p.green >> 9);
        p.red = static_cast<uint8_t>((green + blue) * p.red >> 9);
    });
}

void describeThreeStripColor(Catalogue& catalogue) {
    constexpr NumberRange expand{.from = 0, .to = 255, .example = 40, .most = 256};
    catalogue.add("krlImageThreeStripColor", threeStripColor)
        .summary("Prints the picture from three separations, whose dyes darken one another.")
        .words("old film, cinema, vivid, dyes, vintage, three-strip")
        .integer("expandRed", expand, "level below which the red dye does not print; 256 shuts it")
        .integer("expandGreen", expand, "the same for the green dye")
        .integer("expandBlue", expand, "the same for the blue dye")
        .inputFailure("Three Strip Color input failure (Image)")
        .worksPerPixel()
        .failed("Failed Three Strip Color function (Image)");
}

}  // namespace krl
