#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/VectorLevels.h"
#include "effects/alpha/ChangeAlpha.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

KRL_STREAM_LEVELS void lowerByRed(Pixel* first, Pixel* last) {
    changeAlpha(first, last, [](uint32_t word) {
        const uint32_t both = (word >> 24) + (word >> 16 & 255);
        return std::max<uint32_t>(both, 255) - 255;
    });
}

}  // namespace

/// Lowers alpha by what red lacks of white: `alpha + red - 255`, at least 0.
Status combineRGBwithAlpha(ImageEngine& engine) { return forEachSpan(engine, lowerByRed); }

void describeCombineRGBwithAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageCombineRGBwithAlpha", combineRGBwithAlpha)
        .summary("Makes a picture transparent where its red, drawn as a matte, is dark: black clears.")
        .words("matte, mask, transparency, cut out")
        .worksPerPixel()
        .failed("Failed Combine RGB with Alpha function (Image)");
}

}  // namespace krl
