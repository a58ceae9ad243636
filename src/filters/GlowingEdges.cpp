#include "blur/TentBlur.h"
#include "core/ImageCopy.h"
#include "filters/AlphaScale.h"
#include "filters/ChannelMask.h"
#include "filters/Edges.h"
#include "filters/LineWindow.h"

namespace krl {

namespace {

/// Largest and smallest along the rows: `lowest` holds the picture and takes the smallest.
Status spreadOfRows(const ImageEngine& engine, const ImageBuffer& lowest, const ImageBuffer& highest,
                    int32_t half, bool scaled, const BundleRoom& room) {
    const int32_t width = lowest.width;
    const LineWindow window = LineWindow::centred(half, width);
    return forEachBundle(engine, lowest.height, [&](int32_t band, IndexRange rows) {
        if (scaled)
            for (int32_t y = rows.first; y < rows.last; ++y)
                scaleByAlpha(lowest.row(y), lowest.row(y), width);
        const auto put = [&](const ImageBuffer& target) {
            return [bundle = LineBundle::ofRows(target, rows)](int32_t x, const Lanes& result) {
                for (int32_t y = 0; y < bundle.lines; ++y) bundle.at(y, x) = result.pixel(y);
            };
        };
        LineBundle::ofRows(lowest, rows).gather(room.line(band));
        slideWindow<Smallest>(room.line(band), width, window, room.tails(band), put(lowest));
        slideWindow<Largest>(room.line(band), width, window, room.tails(band), put(highest));
    });
}

/// The same down the columns, and what the difference of both becomes, into the image.
Status spreadOfColumns(const ImageEngine& engine, const ImageBuffer& lowest, const ImageBuffer& highest,
                       int32_t half, const uint8_t* curve, const BundleRoom& room) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::centred(half, image.height);
    const ChannelMask mask(ChannelTarget::RGB);
    return forEachBundle(engine, image.width, [&](int32_t band, IndexRange columns) {
        Lanes *line = room.line(band), *smallest = room.other(band);
        LineBundle::ofColumns(lowest, columns).gather(line);
        slideWindow<Smallest>(line, image.height, window, room.tails(band),
                              [&](int32_t y, const Lanes& result) { smallest[y] = result; });
        LineBundle::ofColumns(highest, columns).gather(line);
        slideWindow<Largest>(
            line, image.height, window, room.tails(band), [&](int32_t y, const Lanes& largest) {
                Pixel* row = image.row(y) + columns.first;
                for (int32_t x = 0; x < columns.last - columns.first; ++x) {
                    const Pixel high = largest.pixel(x), low = smallest[y].pixel(x);
                    row[x] = mask.merge(row[x], {curve[high.blue - low.blue], curve[high.green - low.green],
                                                 curve[high.red - low.red], 0});
                }
            });
    });
}

}  // namespace

Status glowingEdges(ImageEngine& engine, int32_t size, int32_t smoothness, float brightness) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    if (image.width < 2 || image.height < 2) return kStatusOk;

    const int32_t half = clampTo(size, 0, 10);
    uint8_t curve[256];
    for (int32_t spread = 0; spread < 256; ++spread)
        curve[spread] = truncatedByte(double(spread) * brightness);

    const ImageCopy lowest(image);
    const ImageCopy highest(image);
    const BundleRoom room(engine.getThreadCount(), std::max(image.width, image.height));
    if (smoothness > 0)
        TentBlur(engine.getThreadCount()).blurRGBA(lowest.row(0), image.height, image.width, smoothness);
    const Status rows =
        spreadOfRows(engine, lowest.view(), highest.view(), half, hasTransparency(image), room);
    return rows ? rows : spreadOfColumns(engine, lowest.view(), highest.view(), half, curve, room);
}

}  // namespace krl
