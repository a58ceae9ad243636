#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/VectorLevels.h"
#include "effects/alpha/ChangeAlpha.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

KRL_STREAM_LEVELS void setAlpha(Pixel* first, Pixel* last, uint32_t alpha) {
    changeAlpha(first, last, [=](uint32_t) { return alpha; });
}

}  // namespace

/// Sets all alpha to 0 for black, 255 for white.
Status clearAlpha(ImageEngine& engine, AlphaFill direction) {
    const uint32_t alpha = direction == AlphaFill::White ? 255 : 0;
    return forEachSpan(engine, [=](Pixel* first, Pixel* last) { setAlpha(first, last, alpha); });
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
