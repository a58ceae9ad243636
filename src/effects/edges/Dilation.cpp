#include "catalogue/Catalogue.h"
#include "kernels/neighbour/SquareWindow.h"
#include "krlimage/edges.h"

namespace krl {

/// Each colour byte becomes the smallest of a square window, scaled by alpha.
Status dilation(ImageEngine& engine, int32_t size) {
    if (Status state = engine.imageStatus()) return state;
    return spreadSquare<Smallest, true>(engine, ChannelMask(ChannelTarget::RGB), size);
}

void describeDilation(Catalogue& catalogue) {
    catalogue.add("krlImageDilation", dilation)
        .summary("Spreads dark areas: each colour takes the darkest around it.")
        .words("morphology, grow, dark, thicken, minimum")
        .integer("size", {.from = 0, .to = 20, .example = 3, .least = 0, .pixels = true},
                 "pixels to each side; where a picture has transparency its colours darken too")
        .inputFailure("Dilation input failure (Image)")
        .failed("Failed Dilation function (Image)");
}

}  // namespace krl
