#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

KRL_STREAM_LEVELS void showAlpha(Pixel* first, Pixel* last) {
    constexpr uint32_t kOpaqueBlack = 0xFF000000;
    for (Pixel* p = first; p != last; ++p) {
        const uint32_t alpha = wordOf(*p) >> 24;
        storeWord(*p, kOpaqueBlack | alpha << 16 | alpha << 8 | alpha);
    }
}

}  // namespace

/// Sets the three colours to alpha, and alpha to 255.
Status viewAlpha(ImageEngine& engine) { return forEachSpan(engine, showAlpha); }

void describeViewAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageViewAlpha", viewAlpha)
        .summary("Shows the transparency as an opaque grey picture.")
        .words("matte, mask, show, transparency")
        .worksPerPixel()
        .failed("Failed View Alpha function (Image)");
}

}  // namespace krl
