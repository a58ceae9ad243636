#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ChannelMask.h"
#include "core/ImageCopy.h"
#include "core/VectorLevels.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/curve/ByteCurve.h"
#include "kernels/neighbour/RollingSquares.h"
#include "krlimage/edges.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void spreadsOf(const uint8_t* largest, const uint8_t* smallest, int32_t count, uint8_t* spreads) {
    for (int32_t i = 0; i < count; ++i) spreads[i] = static_cast<uint8_t>(largest[i] - smallest[i]);
}

/// What the spread of each square of `softened` becomes, into the image.
Status drawSpreads(const ImageEngine& engine, const ImageBuffer& softened, int32_t half, const ByteCurve& curve) {
    const ImageBuffer& image = *engine.buffer();
    const int32_t bands = engine.getThreadCount(), width = image.width;
    const LineWindow along = LineWindow::centred(half, width), down = LineWindow::centred(half, image.height);
    const uint64_t roomEach = roomForSquares(width, along, down);
    const BandRoom room(bands, 2 * roomEach + static_cast<uint64_t>(width));
    const ChannelMask mask(ChannelTarget::RGB);
    return runBands(engine, bands, [&](int32_t band) {
        const IndexRange rows = lineBand(image.height, bands, band);
        if (rows.first >= rows.last) return;
        Pixel* const spreads = room.of(band);
        const auto squaresOf = [&](auto extreme, Pixel* place) {
            return RollingSquares(extreme, width, image.height, rows.first, along, down, place,
                                  [&](RowWindows& windows, int32_t y, Pixel* target) {
                                      const Pixel* row = softened.row(y);
                                      if (!areOpaque(row, width)) {
                                          scaleByAlpha(row, target, width);
                                          row = target;
                                      }
                                      windows.slide<decltype(extreme)>(row, target);
                                  });
        };
        auto largest = squaresOf(Largest(), spreads + width);
        auto smallest = squaresOf(Smallest(), spreads + width + roomEach);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            spreadsOf(firstByte(largest.next()), firstByte(smallest.next()), width * 4, firstByte(spreads));
            applyCurveTo<0, 1, 2>(spreads, spreads + width, curve);
            mask.write(image.row(y), spreads, width);
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

    const ScratchImage softened(image);
    leftOutWithoutThreads(TentBlur(engine).blurInto(softened, image, smoothness, ChannelTarget::RGBA));
    return drawSpreads(engine, softened.view(), half, curve);
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
