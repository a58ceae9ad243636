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
Status extremeOfRows(const ImageEngine& engine, ChannelMask mask, int32_t half, const Intermediate& between,
                     const BundleRoom& room) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::seededLate(half, image.width);
    return forEachBundle(engine, image.height, [&](int32_t band, IndexRange rows) {
        Lanes* line = room.line(band);
        const LineBundle source = LineBundle::ofRows(image, rows);
        const LineBundle target = LineBundle::ofRows(between.view(), rows);
        source.gather(line);
        if constexpr (kScaled)
            for (int32_t x = 0; x < image.width; ++x) {
                auto* lanes = reinterpret_cast<Pixel*>(line[x].byte);
                scaleByAlpha(lanes, lanes, source.lines);
            }
        slideWindow<Extreme>(line, image.width, window, room.tails(band),
                             [&](int32_t x, const Lanes& result) {
                                 for (int32_t y = 0; y < source.lines; ++y) {
                                     const Pixel merged = mask.merge(source.at(y, x), result.pixel(y));
                                     target.at(y, x) = kScaled ? scaledByAlpha(merged) : merged;
                                 }
                             });
    });
}

/// The column pass: reads `between` and writes the masked bytes of the image.
template <class Extreme>
Status extremeOfColumns(const ImageEngine& engine, ChannelMask mask, int32_t half,
                        const Intermediate& between, const BundleRoom& room) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::seededLate(half, image.height);
    return forEachBundle(engine, image.width, [&](int32_t band, IndexRange columns) {
        Lanes* line = room.line(band);
        LineBundle::ofColumns(between.view(), columns).gather(line);
        slideWindow<Extreme>(
            line, image.height, window, room.tails(band), [&](int32_t y, const Lanes& result) {
                mask.write(image.row(y) + columns.first, reinterpret_cast<const Pixel*>(result.byte),
                           columns.last - columns.first);
            });
    });
}

template <class Extreme>
Status squareExtreme(ImageEngine& engine, ChannelMask mask, int32_t half, bool scaled) {
    const ImageBuffer& image = *engine.buffer();
    const Intermediate between(image);
    const BundleRoom room(engine.getThreadCount(), std::max(image.width, image.height));
    const Status rows = scaled ? extremeOfRows<Extreme, true>(engine, mask, half, between, room)
                               : extremeOfRows<Extreme, false>(engine, mask, half, between, room);
    return rows ? rows : extremeOfColumns<Extreme>(engine, mask, half, between, room);
}

template <class Extreme>
Status colourExtreme(ImageEngine& engine, int32_t size) {
    if (Status state = engine.imageStatus()) return state;
    return squareExtreme<Extreme>(engine, ChannelMask(ChannelTarget::RGB), size,
                                  hasTransparency(*engine.buffer()));
}

/// One pass along the rows, in place: a bundle is read whole before it is written.
Status erodeRows(ImageEngine& engine, const LineWindow& window) {
    const ImageBuffer& image = *engine.buffer();
    const BundleRoom room(engine.getThreadCount(), image.width);
    const ChannelMask mask(ChannelTarget::Alpha);
    return forEachBundle(engine, image.height, [&](int32_t band, IndexRange rows) {
        Lanes* line = room.line(band);
        const LineBundle bundle = LineBundle::ofRows(image, rows);
        bundle.gather(line);
        slideWindow<Smallest>(line, image.width, window, room.tails(band),
                              [&](int32_t x, const Lanes& result) {
                                  for (int32_t y = 0; y < bundle.lines; ++y)
                                      bundle.at(y, x) = mask.merge(bundle.at(y, x), result.pixel(y));
                              });
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
