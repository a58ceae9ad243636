#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ChannelMask.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/neighbour/LineWindow.h"
#include "krlimage/edges.h"

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

KRL_VECTOR_LEVELS
void spreadsOf(const uint8_t* largest, const uint8_t* smallest, int32_t count, uint8_t* spreads) {
    for (int32_t i = 0; i < count; ++i) spreads[i] = static_cast<uint8_t>(largest[i] - smallest[i]);
}

/// The same down the columns, and what the difference of both becomes, into the image.
Status spreadOfColumns(const ImageEngine& engine, const ImageBuffer& lowest, const ImageBuffer& highest,
                       int32_t half, const ByteCurve& curve) {
    const ImageBuffer& image = *engine.buffer();
    const LineWindow window = LineWindow::centred(half, image.height);
    const int64_t tailRows = std::min(window.length, image.height);
    const ChannelMask mask(ChannelTarget::RGB);
    return forEachColumnSpan(engine, 2 * tailRows, [&](IndexRange columns, Pixel* room) {
        const int32_t width = columns.last - columns.first;
        ColumnWindows<Smallest> smallest(lowest, columns, window, room);
        ColumnWindows<Largest> largest(highest, columns, window, room + tailRows * width);
        for (int32_t y = 0; y < image.height; ++y) {
            Pixel spreads[kColumnsAtOnce];
            spreadsOf(firstByte(largest.next()), firstByte(smallest.next()), width * 4, firstByte(spreads));
            applyCurveTo<0, 1, 2>(spreads, spreads + width, curve);
            mask.write(image.row(y) + columns.first, spreads, width);
        }
    });
}

}  // namespace

/// The spread of each colour around a pixel, brightened.
Status glowingEdges(ImageEngine& engine, int32_t size, int32_t smoothness, float brightness) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    if (image.width < 2 || image.height < 2) return kStatusOk;

    const int32_t half = clampTo(size, 0, 10);
    const ByteCurve curve =
        byteCurve([=](int32_t spread) { return truncatedByte(double(spread) * brightness); });

    const ScratchImage lowest(image), highest(image);
    leftOutWithoutThreads(TentBlur(engine).blurInto(lowest, image, smoothness, ChannelTarget::RGBA));
    const Status rows = spreadOfRows(engine, lowest.view(), highest.view(), half);
    return rows ? rows : spreadOfColumns(engine, lowest.view(), highest.view(), half, curve);
}

void describeGlowingEdges(Catalogue& catalogue) {
    catalogue.add("krlImageGlowingEdges", glowingEdges)
        .summary("Turns edges into lines of neon on black.")
        .words("neon, outline, contour, light")
        .integer("size", {.from = 0, .to = 10, .example = 2, .least = 0, .most = 10, .pixels = true},
                 "width of the lines, in pixels to each side")
        .integer("smoothness", {.from = 0, .to = 20, .example = 3, .least = 0, .pixels = true},
                 "softening before the search, in pixels")
        .real("brightness", {.from = 0, .to = 10, .example = 2.5, .least = 0, .most = 255},
              "factor on the light of the lines")
        .inputFailure("Glowing Edges input failure (Image)")
        .failed("Failed Glowing Edges function (Image)");
}

}  // namespace krl
