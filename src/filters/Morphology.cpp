#include "filters/Morphology.h"

#include "core/ImageCopy.h"
#include "filters/AlphaScale.h"
#include "filters/ChannelMask.h"
#include "filters/LineWindow.h"

namespace krl {

namespace {

/// A picture of the image's size that a first pass fills and a second one reads.
class Intermediate {
public:
    explicit Intermediate(const ImageBuffer& image) : block_(image.bytes()), view_(image) {
        view_.pixels = block_.data();
        view_.end = block_.end();
    }
    const ImageBuffer& view() const { return view_; }

private:
    Scratch<uint8_t> block_;
    ImageBuffer view_;
};

/// The row pass: reads the image and fills `between`, alpha included. `kScaled` weighs colours by
/// alpha, and does so again in what it writes, as the column pass is to find them.
template <class Extreme, bool kScaled>
Status extremeOfRows(const ImageEngine& engine, ChannelMask mask, int32_t half, const Intermediate& between) {
    const ImageBuffer& image = *engine.buffer();
    return forEachRowWindow(
        engine, LineWindow::seededLate(half, image.width), [&](int32_t y, RowWindows& windows) {
            const Pixel* row = image.row(y);
            Pixel* target = between.view().row(y);
            if (kScaled) scaleByAlpha(row, target, image.width);
            mask.combine(row, windows.slide<Extreme>(kScaled ? target : row), image.width, target);
            if (kScaled) scaleByAlpha(target, target, image.width);
        });
}

/// The column pass: reads `between` and writes the masked bytes of the image.
template <class Extreme>
Status extremeOfColumns(const ImageEngine& engine, ChannelMask mask, int32_t half,
                        const Intermediate& between) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::seededLate(half, image.height);
    return forEachColumnRun(
        engine, std::min(window.length, image.height), [&](IndexRange columns, Pixel* tails) {
            slideDownColumns<Extreme>(
                between.view(), columns, window, tails, [&](int32_t y, const Pixel* extremes) {
                    mask.write(image.row(y) + columns.first, extremes, columns.last - columns.first);
                });
        });
}

template <class Extreme>
Status squareExtreme(ImageEngine& engine, ChannelMask mask, int32_t half, bool scaled) {
    const Intermediate between(*engine.buffer());
    const Status rows = scaled ? extremeOfRows<Extreme, true>(engine, mask, half, between)
                               : extremeOfRows<Extreme, false>(engine, mask, half, between);
    return rows ? rows : extremeOfColumns<Extreme>(engine, mask, half, between);
}

template <class Extreme>
Status colourExtreme(ImageEngine& engine, int32_t size) {
    if (Status state = engine.imageStatus()) return state;
    return squareExtreme<Extreme>(engine, ChannelMask(ChannelTarget::RGB), size,
                                  hasTransparency(*engine.buffer()));
}

/// One pass along the rows, in place: a row is laid out whole before it is written.
Status erodeRows(ImageEngine& engine, const LineWindow& window) {
    const ImageBuffer& image = *engine.buffer();
    const ChannelMask mask(ChannelTarget::Alpha);
    return forEachRowWindow(engine, window, [&](int32_t y, RowWindows& windows) {
        mask.write(image.row(y), windows.slide<Smallest>(image.row(y)), image.width);
    });
}

}  // namespace

Status dilation(ImageEngine& engine, int32_t size) { return colourExtreme<Smallest>(engine, size); }

Status erosion(ImageEngine& engine, int32_t size) { return colourExtreme<Largest>(engine, size); }

Status erodeWhite(ImageEngine& engine, int32_t distance, ErodeDirection direction) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t width = engine.buffer()->width;
    if (direction == ErodeDirection::Right) return erodeRows(engine, LineWindow::before(distance, width));
    if (direction == ErodeDirection::Left) return erodeRows(engine, LineWindow::afterFirst(distance, width));
    return squareExtreme<Smallest>(engine, ChannelMask(ChannelTarget::Alpha), distance, false);
}

}  // namespace krl
