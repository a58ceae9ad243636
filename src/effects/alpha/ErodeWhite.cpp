#include "catalogue/Catalogue.h"
#include "kernels/neighbour/SquareWindow.h"
#include "krlimage/alpha.h"

namespace krl {

namespace {

/// One pass along the rows, in place: a row is read whole before it is written.
Status erodeRows(ImageEngine& engine, const LineWindow& window) {
    const ImageBuffer& image = *engine.buffer();
    const ChannelMask mask(ChannelTarget::Alpha);
    return forEachRowWindow(engine, window, [&](int32_t y, RowWindows& windows) {
        mask.write(image.row(y), windows.slide<Smallest>(image.row(y)), image.width);
    });
}

}  // namespace

/// Alpha becomes the smallest of a window, all round or to one side.
Status erodeWhite(ImageEngine& engine, int32_t distance, ErodeDirection direction) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t width = engine.buffer()->width;
    if (direction == ErodeDirection::Right) return erodeRows(engine, LineWindow::before(distance, width));
    if (direction == ErodeDirection::Left) return erodeRows(engine, LineWindow::afterFirst(distance, width));
    return spreadSquare<Smallest, false>(engine, ChannelMask(ChannelTarget::Alpha), distance);
}

void describeErodeWhite(Catalogue& catalogue) {
    catalogue.add("krlImageErodeWhite", erodeWhite)
        .summary("Shrinks a matte: alpha takes the most transparent around it.")
        .words("shrink, choke, matte, edge, mask")
        .integer("distance", {.from = 0, .to = 20, .example = 3, .least = 0, .pixels = true},
                 "pixels to eat away; to one side twice as many")
        .symbol(
            "direction",
            {{"all", ErodeDirection::All}, {"right", ErodeDirection::Right}, {"left", ErodeDirection::Left}},
            refused("Erode White invalid input direction (Image)"),
            "eats into edges all round, into left edges going right, or into right edges going left")
        .inputFailure("Erode White input failure (Image)")
        .failed("Failed Erode White function (Image)");
}

}  // namespace krl
