#include "blur/TentBlur.h"
#include "core/ChannelMask.h"
#include "core/ImageCopy.h"
#include "filters/AlphaScale.h"
#include "filters/Edges.h"
#include "filters/LineWindow.h"

namespace krl {

namespace {

/// Largest and smallest along the rows: `lowest` holds the picture and takes the smallest.
Status spreadOfRows(const ImageEngine& engine, const ImageBuffer& lowest, const ImageBuffer& highest,
                    int32_t half) {
    const int32_t width = lowest.width;
    return forEachRowWindow(engine, LineWindow::centred(half, width), [&](int32_t y, RowWindows& windows) {
        Pixel *low = lowest.row(y), *high = highest.row(y);
        if (!areOpaque(low, width)) scaleByAlpha(low, low, width);
        windows.slide<Largest>(low, high);
        windows.slide<Smallest>(low, low);
    });
}

/// The same down the columns, and what the difference of both becomes, into the image.
Status spreadOfColumns(const ImageEngine& engine, const ImageBuffer& lowest, const ImageBuffer& highest,
                       int32_t half, const uint8_t* curve) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::centred(half, image.height);
    const int32_t tailRows = std::min(window.length, image.height);
    const ChannelMask mask(ChannelTarget::RGB);
    return forEachColumnRun(engine, int64_t(tailRows) + image.height, [&](IndexRange columns, Pixel* room) {
        const int32_t width = columns.last - columns.first;
        Pixel *tails = room, *smallest = room + int64_t(tailRows) * width;
        slideDownColumns<Smallest>(lowest, columns, window, tails, [&](int32_t y, const Pixel* extremes) {
            std::memcpy(smallest + int64_t(y) * width, extremes, static_cast<size_t>(width) * sizeof(Pixel));
        });
        slideDownColumns<Largest>(highest, columns, window, tails, [&](int32_t y, const Pixel* largest) {
            const Pixel* low = smallest + int64_t(y) * width;
            Pixel* row = image.row(y) + columns.first;
            for (int32_t x = 0; x < width; ++x)
                row[x] = mask.merge(
                    row[x], {curve[largest[x].blue - low[x].blue], curve[largest[x].green - low[x].green],
                             curve[largest[x].red - low[x].red], 0});
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
    if (smoothness > 0)
        TentBlur(engine.getThreadCount()).blurRGBA(lowest.row(0), image.height, image.width, smoothness);
    const Status rows = spreadOfRows(engine, lowest.view(), highest.view(), half);
    return rows ? rows : spreadOfColumns(engine, lowest.view(), highest.view(), half, curve);
}

}  // namespace krl
