#include "catalogue/Catalogue.h"
#include "catalogue/NewPicture.h"
#include "core/Bands.h"
#include "core/PixelWord.h"
#include "krlimage/fields.h"

/// Halves a picture: every pixel of the half is the mean of a block of 2 by 2 pixels.
namespace krl {

namespace {

/// (a + b + c + d) / 4, byte by byte and rounded down: two bytes at a time in the halves of a word, where
/// sums of four have room.
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
    return runBands(engine, threadCount, [&](int32_t band) {
        const IndexRange source = lineBand(image.height, threadCount, band);
        const IndexRange target = lineBand(half.info.height, threadCount, band);
        int32_t y = source.first;
        for (int32_t halfY = target.first; halfY < target.last; ++halfY, y += 2) {
            if (y >= source.last || y >= image.height - 1) return;
            halveRowPair(image.row(y), image.row(y + 1), half.row(halfY), half.info.width);
        }
    });
}

namespace {

Outcome halvePicture(Call& call) {
    ImageInfo half;
    Status status = halfSizeInfo(*call.engine(), half);
    if (status != kStatusOk) return failure(call.method().failedText());
    NewPicture frame(call, half.width, half.height);
    status = halfSize(*call.engine(), frame.image());
    if (status != kStatusOk) return failure(call.method().failedText());
    call.caller().givePicture("frame", frame.give());
    return succeeded();
}

}  // namespace

void describeHalfSize(Catalogue& catalogue) {
    catalogue.add("krlImageHalfSize")
        .summary("Makes a new picture of half the width and height.")
        .words("resize, scale, shrink, smaller, downscale, thumbnail")
        .givesPicture("frame", "the new picture")
        .failed("Failed Half Size Check function (Image)")
        .dependsOnBands()
        .does(halvePicture);
}

}  // namespace krl
