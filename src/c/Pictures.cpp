#include "c/Pictures.h"

#include <algorithm>

#include "c/Handles.h"

namespace krl::c {

namespace {

bool isSame(const Picture& a, const Picture& b) {
    return isSamePlace(a, b) && a.order == b.order && a.info.width == b.info.width &&
           a.info.height == b.info.height;
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

Picture requirePicture(const krl_picture* picture, const std::string& prefix) {
    if (!isPicture(picture))
        throw Problem{KRL_BAD_PICTURE, prefix + "the picture has no pixels, a size that cannot be, or rows " +
                                           "shorter than their pixels"};
    return pictureOf(*picture);
}

Route requireRoute(const krl_picture* from, const krl_picture* to, const std::string& prefix) {
    const Picture target = requirePicture(to, prefix);
    if (!from) return {target, target};
    const Picture source = requirePicture(from, prefix);
    if (source.info.width != target.info.width || source.info.height != target.info.height)
        throw Problem{KRL_BAD_PICTURE, prefix + "the two pictures have different sizes"};
    return {source, target};
}

const krl_picture* given(const krl_picture* picture) {
    static constexpr krl_picture none = {};
    return picture ? picture : &none;
}

NativePictures::~NativePictures() {
    for (const Copy& copy : copies_)
        if (copy.isChanged) copyPixels(copy.native, copy.callers);
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

Picture NativePictures::rewrite(const Picture& picture, const Picture& from) {
    Picture native = picture;
    if (hasOwnForm(picture)) {
        native.order = PixelOrder::BGRA;
        if (!isNative(picture)) copies_.push_back({picture, native, true});
    } else {
        native = nativeOf(picture, true);
    }
    if (!isSame(from, picture) || isSamePlace(native, picture)) copyPixels(from, native);
    return native;
}

const Picture& NativePictures::nativeOf(const Picture& picture, bool isChanged) {
    if (isNative(picture)) return picture;
    Copy* copy = findCopy(picture);
    if (!copy) {
        copy = &copies_.emplace_back(Copy{picture, Picture::blank(picture.info.width, picture.info.height)});
        copyPixels(picture, copy->native);
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
