#include "catalogue/Catalogue.h"
#include "kernels/neighbour/SquareWindow.h"
#include "krlimage/edges.h"

namespace krl {

/// Each colour byte becomes the largest of a square window, scaled by alpha.
Status erosion(ImageEngine& engine, int32_t size) {
    if (Status state = engine.imageStatus()) return state;
    return spreadSquare<Largest, true>(engine, ChannelMask(ChannelTarget::RGB), size);
}

void describeErosion(Catalogue& catalogue) {
    catalogue.add("krlImageErosion", erosion)
        .summary("Spreads bright areas: each colour takes the brightest around it.")
        .words("morphology, shrink, bright, maximum")
        .integer("size", {.from = 0, .to = 20, .example = 3, .least = 0, .pixels = true},
                 "pixels to each side; where a picture has transparency its colours darken too")
        .inputFailure("Erosion input failure (Image)")
        .failed("Failed Erosion function (Image)");
}

}  // namespace krl
