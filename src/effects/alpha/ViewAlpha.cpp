#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "krlimage/alpha.h"

namespace krl {

/// Sets the three colours to alpha, and alpha to 255.
Status viewAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p = {p.alpha, p.alpha, p.alpha, 255}; });
}

void describeViewAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageViewAlpha", viewAlpha)
        .summary("Shows the transparency as an opaque grey picture.")
        .words("matte, mask, show, transparency")
        .worksPerPixel()
        .failed("Failed View Alpha function (Image)");
}

}  // namespace krl
