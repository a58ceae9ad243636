#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Scratch.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

/// The places, along one axis of `length`, that something moves onto when all move by `offset`.
IndexRange landing(int32_t length, int32_t offset) {
    const int64_t first = std::max<int64_t>(0, offset);
    const int64_t last = std::min<int64_t>(length, int64_t(length) + offset);
    return first < last ? IndexRange{int32_t(first), int32_t(last)} : IndexRange{};
}

}  // namespace

/// Moves the alpha plane: `alpha(x + horizontal, y + vertical) = alpha(x, y)` where both are in the picture.
/// Places that nothing moves onto keep their alpha.
Status alphaOffset(ImageEngine& engine, int32_t horizontal, int32_t vertical) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const IndexRange columns = landing(image.width, horizontal), rows = landing(image.height, vertical);
    if ((horizontal == 0 && vertical == 0) || columns.first == columns.last || rows.first == rows.last)
        return kStatusOk;

    const auto width = static_cast<size_t>(image.width);
    const Scratch<uint8_t> plane(width * static_cast<size_t>(image.height));
    const Status copied = forEachRow(engine, [&](const Pixel* row, int32_t y) {
        uint8_t* kept = plane.data() + size_t(y) * width;
        for (size_t x = 0; x < width; ++x) kept[x] = row[x].alpha;
    });
    if (copied) return copied;

    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        if (y < rows.first || y >= rows.last) return;
        const uint8_t* source = plane.data() + size_t(y - vertical) * width;
        for (int32_t x = columns.first; x < columns.last; ++x) row[x].alpha = source[x - horizontal];
    });
}

void describeAlphaOffset(Catalogue& catalogue) {
    catalogue.add("krlImageAlphaOffset", alphaOffset)
        .summary("Moves the transparency and leaves the colours where they are.")
        .words("move, shift, matte, transparency")
        .integer("horizontal", {.from = -200, .to = 200, .example = 24, .pixels = true},
                 "columns to the right")
        .integer("vertical", {.from = -200, .to = 200, .example = 24, .pixels = true},
                 "rows away from the first")
        .inputFailure("Alpha Offset input failure (Image)")
        .failed("Failed Alpha Offset function (Image)");
}

}  // namespace krl
