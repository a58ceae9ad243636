#include "c/Pictures.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace krl::c {

namespace {

constexpr ptrdiff_t kPixelBytes = sizeof(Pixel);

bool isTight(const Picture& picture) { return picture.info.rowBytes == picture.info.width * kPixelBytes; }
bool isNative(const Picture& picture) { return isTight(picture) && picture.order == PixelOrder::BGRA; }

bool isSame(const Picture& a, const Picture& b) {
    return a.pixels == b.pixels && a.order == b.order && a.info.width == b.info.width &&
           a.info.height == b.info.height && a.info.rowBytes == b.info.rowBytes;
}

Pixel* rowOf(const Picture& picture, int32_t y) {
    return reinterpret_cast<Pixel*>(picture.pixels + ptrdiff_t{picture.info.rowBytes} * y);
}

/// The pixels of each row, and not what is between the rows.
void copyRows(const Picture& from, const Picture& to) {
    for (int32_t y = 0; y < from.info.height; ++y)
        std::memcpy(rowOf(to, y), rowOf(from, y), static_cast<size_t>(from.info.width) * sizeof(Pixel));
}

}  // namespace

bool isPicture(const krl_picture* picture) {
    if (!picture || picture->size < sizeof(krl_picture) || !picture->pixels) return false;
    if (picture->width < 1 || picture->height < 1) return false;
    if (picture->order != KRL_BGRA && picture->order != KRL_RGBA) return false;
    if (int64_t{picture->width} * picture->height > INT32_MAX / kPixelBytes) return false;
    return picture->row_bytes >= picture->width * kPixelBytes && picture->row_bytes <= INT32_MAX &&
           picture->row_bytes <= PTRDIFF_MAX / picture->height;
}

Picture pictureOf(const krl_picture& picture) {
    Picture made;
    made.pixels = static_cast<uint8_t*>(picture.pixels);
    made.info.width = picture.width;
    made.info.height = picture.height;
    made.info.rowBytes = static_cast<int32_t>(picture.row_bytes);
    made.order = static_cast<PixelOrder>(picture.order);
    return made;
}

krl_picture describe(const Picture& picture) {
    return {sizeof(krl_picture), picture.pixels,        picture.info.width,
            picture.info.height, picture.info.rowBytes, static_cast<int32_t>(picture.order)};
}

void reorder(const Picture& picture) {
    // Pixels are words here, since compilers make no vector loop of their bytes.
    constexpr uint32_t alphaAndGreen = std::endian::native == std::endian::little ? 0xff00ff00 : 0x00ff00ff;
    const int32_t width = picture.info.width;
    for (int32_t y = 0; y < picture.info.height; ++y) {
        Pixel* const row = rowOf(picture, y);
        for (int32_t x = 0; x < width; ++x) {
            uint32_t word;
            std::memcpy(&word, row + x, sizeof word);
            word = (word & alphaAndGreen) | (std::rotl(word, 16) & ~alphaAndGreen);
            std::memcpy(row + x, &word, sizeof word);
        }
    }
}

NativePictures::~NativePictures() {
    for (const Copy& copy : copies_) {
        if (!copy.isChanged) continue;
        if (copy.callers.order == PixelOrder::RGBA) reorder(copy.native);
        copyRows(copy.native, copy.callers);
    }
    if (reordered_.pixels) reorder(reordered_);
}

Value NativePictures::convert(const Value& value, bool isChanged) {
    if (const auto* picture = value.as<Picture>()) return nativeOf(*picture, isChanged);
    if (const auto* list = value.as<ListValue>()) {
        ListValue converted;
        for (const Value& item : *list) converted.push_back(convert(item, isChanged));
        return converted;
    }
    if (const auto* properties = value.as<PropertyListValue>()) {
        PropertyListValue converted;
        for (const auto& [key, item] : *properties) converted.emplace_back(key, convert(item, isChanged));
        return converted;
    }
    return value;
}

Picture NativePictures::rewrite(const Picture& picture) {
    if (isNative(picture) || !isTight(picture) || findCopy(picture)) return nativeOf(picture, true);
    reordered_ = picture;
    reorder(picture);
    return picture;
}

const Picture& NativePictures::nativeOf(const Picture& picture, bool isChanged) {
    if (isNative(picture)) return picture;
    Copy* copy = findCopy(picture);
    if (!copy) {
        copy = &copies_.emplace_back(Copy{picture, Picture::blank(picture.info.width, picture.info.height)});
        copyRows(picture, copy->native);
        if (picture.order == PixelOrder::RGBA) reorder(copy->native);
    }
    copy->isChanged |= isChanged;
    return copy->native;
}

NativePictures::Copy* NativePictures::findCopy(const Picture& picture) {
    const auto found = std::find_if(copies_.begin(), copies_.end(),
                                    [&](const Copy& copy) { return isSame(copy.callers, picture); });
    return found != copies_.end() ? &*found : nullptr;
}

}  // namespace krl::c
