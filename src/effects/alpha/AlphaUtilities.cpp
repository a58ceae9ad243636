#include "effects/alpha/AlphaUtilities.h"

#include <algorithm>

#include "core/Bands.h"
#include "core/LookupTables.h"
#include "core/Scratch.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

void clearSpan(Pixel* first, Pixel* last) {
    for (Pixel* p = first; p < last; ++p) p->alpha = 0;
}

/// The places, along one axis of `length`, that something moves onto when all move by `offset`.
IndexRange landing(int32_t length, int32_t offset) {
    const int64_t first = std::max<int64_t>(0, offset);
    const int64_t last = std::min<int64_t>(length, int64_t(length) + offset);
    return first < last ? IndexRange{int32_t(first), int32_t(last)} : IndexRange{};
}

uint8_t meanColour(const LookupTables& tables, const Pixel& p) {
    return static_cast<uint8_t>(tables.meanOf3[p.blue + p.green + p.red]);
}

}  // namespace

Status alphaCrop(ImageEngine& engine, int32_t top, int32_t right, int32_t bottom, int32_t left) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t width = engine.buffer()->width, height = engine.buffer()->height;
    const int32_t keptFirst = std::min(std::max(left, 0), width - 1) + 1;
    const int32_t keptLast = std::max(keptFirst, width - std::max(right, 0));
    const int32_t bottomRow = std::max(bottom, 0), topRow = height - std::max(top, 0);
    return forEachRow(engine, [=](Pixel* row, int32_t y) {
        if (y <= bottomRow || y >= topRow) return clearSpan(row, row + width);
        clearSpan(row, row + keptFirst);
        clearSpan(row + keptLast, row + width);
    });
}

Status alphaOffset(ImageEngine& engine, int32_t horizontal, int32_t vertical) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const IndexRange columns = landing(image.width, horizontal), rows = landing(image.height, vertical);
    if ((horizontal == 0 && vertical == 0) || columns.first == columns.last || rows.first == rows.last)
        return kStatusOk;

    const auto width = static_cast<size_t>(image.width);
    const Scratch<uint8_t> plane(width * static_cast<size_t>(image.height));
    const Status copied = forEachRow(engine, [&](const Pixel* row, int32_t y) {
        uint8_t* kept = plane.data() + size_t(y) * width;
        for (size_t x = 0; x < width; ++x) kept[x] = row[x].alpha;
    });
    if (copied) return copied;

    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        if (y < rows.first || y >= rows.last) return;
        const uint8_t* source = plane.data() + size_t(y - vertical) * width;
        for (int32_t x = columns.first; x < columns.last; ++x) row[x].alpha = source[x - horizontal];
    });
}

Status clearAlpha(ImageEngine& engine, AlphaFill direction) {
    const uint8_t fill = direction == AlphaFill::White ? 255 : 0;
    return forEachPixel(engine, [=](Pixel& p) { p.alpha = fill; });
}

Status combineRGBwithAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p.alpha = clampByte(p.alpha + p.red - 255); });
}

Status inputMask(ImageEngine& engine, const SecondImage& dotImage, bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    if (!dotImage.pixels) return kStatusNoMaskImage;
    if (!engine.hasSizeOf(dotImage)) return kStatusMaskSize;
    return forEachPixelPair(engine, dotImage, [=](Pixel& p, const Pixel& mask) {
        p.alpha = applyKeyMatte(p.alpha, mask.alpha, keep, invert);
    });
}

Status rgbToAlpha(ImageEngine& engine) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    return forEachPixel(engine, [&](Pixel& p) { p.alpha = meanColour(tables, p); });
}

Status rgbaToAlpha(ImageEngine& engine) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    return forEachPixel(engine, [&](Pixel& p) { p.alpha = std::min(p.alpha, meanColour(tables, p)); });
}

Status viewAlpha(ImageEngine& engine) {
    return forEachPixel(engine, [](Pixel& p) { p = {p.alpha, p.alpha, p.alpha, 255}; });
}

}  // namespace krl
