#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

void clearSpan(Pixel* first, Pixel* last) {
    for (Pixel* p = first; p < last; ++p) p->alpha = 0;
}

}  // namespace

/// Clears the alpha of all pixels outside a rectangle: those with `x <= left`, `x >= width - right`,
/// `y <= bottom` or `y >= height - top`. Negative arguments count as 0.
Status alphaCrop(ImageEngine& engine, int32_t top, int32_t right, int32_t bottom, int32_t left) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t width = engine.buffer()->width, height = engine.buffer()->height;
    const int32_t keptFirst = std::min(std::max(left, 0), width - 1) + 1;
    const int32_t keptLast = std::max(keptFirst, width - std::max(right, 0));
    const int32_t bottomRow = std::max(bottom, 0), topRow = height - std::max(top, 0);
    return forEachRow(engine, [=](Pixel* row, int32_t y) {
        if (y <= bottomRow || y >= topRow) return clearSpan(row, row + width);
        clearSpan(row, row + keptFirst);
        clearSpan(row + keptLast, row + width);
    });
}

void describeAlphaCrop(Catalogue& catalogue) {
    catalogue.add("krlImageAlphaCrop", alphaCrop)
        .summary("Makes everything outside a rectangle transparent.")
        .words("cut, crop, border, garbage matte, rectangle")
        .integer("top", {.from = 0, .to = 400, .example = 40, .least = 0, .pixels = true},
                 "rows to clear at the last row's side")
        .integer("right", {.from = 0, .to = 400, .example = 60, .least = 0, .pixels = true},
                 "columns to clear at the right")
        .integer("bottom", {.from = 0, .to = 400, .example = 40, .least = 0, .pixels = true},
                 "rows to clear at the first row's side; 0 still clears one")
        .integer("left", {.from = 0, .to = 400, .example = 60, .least = 0, .pixels = true},
                 "columns to clear at the left; 0 still clears one")
        .inputFailure("Alpha Crop input failure (Image)")
        .failed("Failed Alpha Crop function (Image)");
}

}  // namespace krl
