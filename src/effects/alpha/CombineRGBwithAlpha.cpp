#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Numbers.h"
#include "krlimage/alpha.h"

namespace krl {

/// Lowers alpha by what red lacks of white: `alpha + red - 255`, at least 0.
Status combineRGBwithAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p.alpha = clampByte(p.alpha + p.red - 255); });
}

void describeCombineRGBwithAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageCombineRGBwithAlpha", combineRGBwithAlpha)
        .summary("Makes a picture transparent where its red, drawn as a matte, is dark: black clears.")
        .words("matte, mask, transparency, cut out")
        .worksPerPixel()
        .failed("Failed Combine RGB with Alpha function (Image)");
}

}  // namespace krl
