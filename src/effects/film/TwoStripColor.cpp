#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Numbers.h"
#include "effects/film/PairTable.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// What is printed in green. The key ink is what the brightest byte lacks; the print shows the magenta ink
/// on top of it.
PairTable magentaPrint() {
    return PairTable([&](int32_t brightest, int32_t green) {
        const auto key = static_cast<float>(1.0 - brightest / 255.0);
        const auto lack = static_cast<float>(1.0 - green / 255.0);
        const auto magenta = key == 1.0f ? 0.0f : static_cast<float>((double{lack} - key) / (1.0 - key));
        const auto inked = static_cast<float>((1.0 - key) * magenta + key);
        return clampByte(truncate(255.0 * (1.0 - std::min(inked, 1.0f)) + 0.5));
    });
}

}  // namespace

/// Leaves the green channel, and black in the others. The three numbers change nothing.
Status twoStripColor(ImageEngine& engine, int32_t, int32_t, int32_t) {
    if (Status state = engine.imageStatus()) return state;
    const PairTable print = magentaPrint();
    return runRowsHere(engine, [&](Pixel* first, Pixel* last) {
        for (Pixel* p = first; p != last; ++p) {
            const uint8_t brightest = std::max({p->blue, p->green, p->red});
            *p = {0, print(brightest, p->green), 0, p->alpha};
        }
    });
}

void describeTwoStripColor(Catalogue& catalogue) {
    constexpr NumberRange expand{.from = 0, .to = 255, .example = 40};
    catalogue.add("krlImageTwoStripColor", twoStripColor)
        .summary("Prints the green record alone, as when two inks are left out.")
        .words("old film, cinema, vintage, two-strip, faded")
        .integer("expandRed", expand, "changes nothing")
        .integer("expandGreen", expand, "changes nothing")
        .integer("expandBlue", expand, "changes nothing")
        .inputFailure("Two Strip Color input failure (Image)")
        .worksPerPixel()
        .failed("Failed Two Strip Color function (Image)");
}

}  // namespace krl
