#include "look/PictureMemory.h"

#include <cstring>

#include "core/ChannelOrder.h"

namespace krl {

namespace {

ptrdiff_t rowPixelBytes(const Picture& picture) { return picture.info.width * kPixelBytes; }

uint8_t* rowOf(const Picture& picture, int32_t y) {
    return picture.pixels + ptrdiff_t{picture.info.rowBytes} * y;
}

/// The first byte after the last pixel.
uintptr_t endOf(const Picture& picture) {
    return reinterpret_cast<uintptr_t>(rowOf(picture, picture.info.height - 1) + rowPixelBytes(picture));
}

}  // namespace

bool isTight(const Picture& picture) { return picture.info.rowBytes == rowPixelBytes(picture); }

bool isNative(const Picture& picture) { return isTight(picture) && picture.order == PixelOrder::BGRA; }

bool isSamePlace(const Picture& a, const Picture& b) {
    return a.pixels == b.pixels && a.info.rowBytes == b.info.rowBytes;
}

bool sharesMemory(const Picture& a, const Picture& b) {
    return reinterpret_cast<uintptr_t>(a.pixels) < endOf(b) &&
           reinterpret_cast<uintptr_t>(b.pixels) < endOf(a);
}

void copySpan(const uint8_t* from, uint8_t* to, size_t count, bool isReordered) {
    if (isReordered)
        exchangeRedAndBlue(from, to, count);
    else if (from != to)
        std::memcpy(to, from, count * sizeof(Pixel));
}

void copyPixels(const Picture& from, const Picture& to) {
    const bool isReordered = from.order != to.order;
    const auto width = static_cast<size_t>(from.info.width), height = static_cast<size_t>(from.info.height);
    if (isTight(from) && isTight(to)) return copySpan(from.pixels, to.pixels, width * height, isReordered);
    for (int32_t y = 0; y < from.info.height; ++y) copySpan(rowOf(from, y), rowOf(to, y), width, isReordered);
}

Picture copyOf(const Picture& picture, PixelOrder order) {
    Picture copy = Picture::blank(picture.info.width, picture.info.height);
    copy.order = order;
    copyPixels(picture, copy);
    return copy;
}

}  // namespace krl
