#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "krlimage/alpha.h"

namespace krl {

/// Sets all alpha to 0 for black, 255 for white.
Status clearAlpha(ImageEngine& engine, AlphaFill direction) {
    const uint8_t fill = direction == AlphaFill::White ? 255 : 0;
    return forEachPixel(engine, [=](Pixel& p) { p.alpha = fill; });
}

void describeClearAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageClearAlpha", clearAlpha)
        .summary("Makes the whole picture transparent or opaque.")
        .words("opaque, transparent, remove transparency, reset")
        .symbol("direction", {{"white", AlphaFill::White}, {"black", AlphaFill::Black}},
                refused("Clear Alpha invalid input direction (Image)"),
                "white for opaque, black for transparent")
        .inputFailure("Clear Alpha input failure (Image)")
        .worksPerPixel()
        .failed("Failed Clear Alpha function (Image)");
}

}  // namespace krl
