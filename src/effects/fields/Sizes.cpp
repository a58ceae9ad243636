#include "effects/fields/Sizes.h"

#include <algorithm>

#include "core/Bands.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"

namespace krl {

namespace {

/// The mean of four pixels, byte by byte and rounded down: two bytes at a time in the halves of a
/// word, where sums of four have room.
uint32_t meanWord(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    constexpr uint32_t kEvenBytes = 0x00FF00FF;
    const uint32_t even = (a & kEvenBytes) + (b & kEvenBytes) + (c & kEvenBytes) + (d & kEvenBytes);
    const uint32_t odd =
        (a >> 8 & kEvenBytes) + (b >> 8 & kEvenBytes) + (c >> 8 & kEvenBytes) + (d >> 8 & kEvenBytes);
    return (even >> 2 & kEvenBytes) | (odd >> 2 & kEvenBytes) << 8;
}

void halveRowPair(const Pixel* upper, const Pixel* lower, Pixel* half, int32_t count) {
    for (int32_t x = 0; x < count; ++x) {
        const uint32_t mean = meanWord(wordOf(upper[2 * x]), wordOf(upper[2 * x + 1]), wordOf(lower[2 * x]),
                                       wordOf(lower[2 * x + 1]));
        storeWord(half[x], mean);
    }
}

}  // namespace

Status halfSizeInfo(const ImageEngine& engine, ImageInfo& half) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    if (image.width <= 1 || image.height <= 1) return kStatusRefused;
    half = {.width = image.width / 2, .height = image.height / 2, .rowBytes = image.width / 2 * 4};
    return kStatusOk;
}

Status halfSize(const ImageEngine& engine, const NewImage& half) {
    ImageInfo expected;
    if (Status size = halfSizeInfo(engine, expected)) return size;
    if (!half.pixels || half.info.width != expected.width || half.info.height != expected.height)
        return kStatusRefused;

    const ImageBuffer& image = *engine.buffer();
    const int32_t threadCount = engine.getThreadCount();
    return runBands(threadCount, [&](int32_t band) {
        const IndexRange source = lineBand(image.height, threadCount, band);
        const IndexRange target = lineBand(half.info.height, threadCount, band);
        int32_t y = source.first;
        for (int32_t halfY = target.first; halfY < target.last; ++halfY, y += 2) {
            if (y >= source.last || y >= image.height - 1) return;
            halveRowPair(image.row(y), image.row(y + 1), half.row(halfY), half.info.width);
        }
    });
}

Status drawCheckerBox(ImageEngine& engine, int32_t size, Colour cOne, Colour cTwo) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const int32_t side = std::clamp(size, 1, std::max({1, image.width, image.height}));
    // One row of tiles and a further tile: rows of odd tiles start one tile along.
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

}  // namespace krl
