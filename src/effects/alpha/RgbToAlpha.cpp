#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/VectorLevels.h"
#include "effects/alpha/ChangeAlpha.h"
#include "kernels/colour/Grey.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

KRL_STREAM_LEVELS void setToMean(Pixel* first, Pixel* last) {
    changeAlpha(first, last, [](uint32_t word) { return thirdOf(colourSum(word)); });
}

}  // namespace

/// Sets alpha to the mean of the three colours: `(blue + green + red) / 3`.
Status rgbToAlpha(ImageEngine& engine) { return forEachSpan(engine, setToMean); }

void describeRgbToAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageRGBtoAlpha", rgbToAlpha)
        .summary("Makes bright places opaque and dark ones transparent.")
        .words("matte, mask, luma, transparency")
        .worksPerPixel()
        .failed("Failed RGB to Alpha function (Image)");
}

}  // namespace krl
