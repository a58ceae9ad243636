#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/VectorLevels.h"
#include "effects/alpha/ChangeAlpha.h"
#include "kernels/colour/Grey.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

KRL_STREAM_LEVELS void limitToMean(Pixel* first, Pixel* last) {
    changeAlpha(first, last,
                [](uint32_t word) { return std::min<uint32_t>(word >> 24, thirdOf(colourSum(word))); });
}

}  // namespace

/// Limits alpha to the mean of the three colours: `min(alpha, (blue + green + red) / 3)`.
Status rgbaToAlpha(ImageEngine& engine) { return forEachSpan(engine, limitToMean); }

void describeRgbaToAlpha(Catalogue& catalogue) {
    catalogue.add("krlImageRGBAtoAlpha", rgbaToAlpha)
        .summary("Makes dark places transparent and keeps what is transparent as it is.")
        .words("matte, mask, luma, transparency")
        .worksPerPixel()
        .failed("Failed RGBA to Alpha function (Image)");
}

}  // namespace krl
