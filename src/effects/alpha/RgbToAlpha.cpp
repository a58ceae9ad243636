#include "catalogue/Catalogue.h"
#include "kernels/colour/Grey.h"
#include "krlimage/alpha.h"

namespace krl {

/// Sets alpha to the mean of the three colours: `(blue + green + red) / 3`.
Status rgbToAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p.alpha = meanColour(p); });
}

void describeRgbToAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageRGBtoAlpha", rgbToAlpha)
        .summary("Makes bright places opaque and dark ones transparent.")
        .words("matte, mask, luma, transparency")
        .worksPerPixel()
        .failed("Failed RGB to Alpha function (Image)");
}

}  // namespace krl
