#include <algorithm>

#include "catalogue/Catalogue.h"
#include "core/Scratch.h"
#include "krlimage/generate.h"

/// Paints a checker pattern: squares of two colours by turns, from the top left.
namespace krl {

Status drawCheckerBox(ImageEngine& engine, int32_t size, Colour cOne, Colour cTwo) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const int32_t side = std::clamp(size, 1, std::max({1, image.width, image.height}));
    // colour(x, y) = (x / side + y / side) even ? cOne : cTwo. One row of squares and a further square: every
    // second row of squares starts one square along.
    const Scratch<Colour> tiles(size_t(image.width) + size_t(side));
    for (size_t x = 0; x < tiles.size(); ++x) tiles[x] = x / size_t(side) % 2 == 0 ? cOne : cTwo;

    for (int32_t y = 0; y < image.height; ++y) {
        const Colour* colours = tiles.data() + (y / side % 2 == 0 ? 0 : side);
        Pixel* row = image.row(y);
        for (int32_t x = 0; x < image.width; ++x)
            row[x] = {colours[x].blue(), colours[x].green(), colours[x].red(), row[x].alpha};
    }
    return kStatusOk;
}

void describeDrawCheckerBox(Catalogue& catalogue) {
    catalogue.add("krlImageDrawCheckerBox", drawCheckerBox)
        .summary("Paints a checker pattern over the colours; transparency is kept.")
        .words("chessboard, checkerboard, pattern, squares, test picture")
        .integer("size", {.from = 1, .to = 200, .example = 40, .least = 1, .pixels = true},
                 "side of a square, in pixels")
        .colour("cOne", Colour(230, 230, 230), "colour of the first square")
        .colour("cTwo", Colour(60, 60, 70), "colour of the squares beside it")
        .inputFailure("Draw Checker Box input failure (Image)")
        .failed("Failed Draw Checker Box function (Image)");
}

}  // namespace krl
