#include <algorithm>

#include "catalogue/Catalogue.h"
#include "kernels/colour/Grey.h"
#include "krlimage/alpha.h"

namespace krl {

/// Limits alpha to the mean of the three colours: `min(alpha, (blue + green + red) / 3)`.
Status rgbaToAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p.alpha = std::min(p.alpha, meanColour(p)); });
}

void describeRgbaToAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageRGBAtoAlpha", rgbaToAlpha)
        .summary("Makes dark places transparent and keeps what is transparent as it is.")
        .words("matte, mask, luma, transparency")
        .worksPerPixel()
        .failed("Failed RGBA to Alpha function (Image)");
}

}  // namespace krl
