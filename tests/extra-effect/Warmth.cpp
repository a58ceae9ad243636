#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Numbers.h"

/// An effect from outside the tree: all that one takes is this file.
namespace krl {

namespace {

/// red + amount and blue - amount, limited to 0..255.
Status warmth(ImageEngine& engine, int32_t amount) {
    const int32_t shift = clampTo(amount, -255, 255);
    return forEachPixel(engine, [shift](Pixel& pixel) {
        pixel.red = clampByte(pixel.red + shift);
        pixel.blue = clampByte(pixel.blue - shift);
    });
}

}  // namespace

void describeWarmth(Catalogue& catalogue) {
    catalogue.add("krlImageWarmth", warmth)
        .summary("Shifts the picture from blue to red.")
        .integer("amount", {.from = -255, .to = 255, .example = 20, .least = -255, .most = 255, .neutral = 0},
                 "levels to add to red and to take from blue")
        .inputFailure("Warmth input failure (Image)")
        .failed("Failed Warmth function (Image)");
}

}  // namespace krl
