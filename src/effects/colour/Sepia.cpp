#include <algorithm>

#include "catalogue/Catalogue.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/colour.h"

namespace krl {

/// Tints the mean of the channels. The floor of 30 on blue and green and none on red tints the shadows.
Status sepia(ImageEngine& engine) {
    const ColourCurves tints = {byteCurve([](int32_t mean) { return std::max(mean - 33, 30); }),
                                byteCurve([](int32_t mean) { return clampTo(mean + 20, 30, 255); }),
                                byteCurve([](int32_t mean) { return std::min(mean + 53, 255); })};
    return recolourByMean(engine, [&](Pixel* first, Pixel* last) { applyCurves(first, last, tints); });
}

void describeSepia(Catalogue& catalogue) {
    catalogue.add("krlImageSepia", sepia)
        .summary("Turns the picture into an old brown print.")
        .words("old photograph, vintage, brown, antique, aged")
        .worksPerPixel()
        .failed("Failed Sepia function (Image)");
}

}  // namespace krl
