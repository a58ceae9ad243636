#include "catalogue/Catalogue.h"
#include "kernels/colour/Grey.h"
#include "krlimage/colour.h"

namespace krl {

/// Replaces the three colours by their mean.
Status desaturate(ImageEngine& engine) { return forEachSpan(engine, takeMeans); }

void describeDesaturate(Catalogue& catalogue) {
    catalogue.add("krlImageDesaturate", desaturate)
        .summary("Replaces colour by the plain mean of red, green and blue.")
        .words("grey, gray, grayscale, black and white, monochrome")
        .worksPerPixel()
        .failed("Failed Desaturate function (Image)");
}

}  // namespace krl
