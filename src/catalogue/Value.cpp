#include "catalogue/Value.h"

#include <cstring>

#include "catalogue/Letters.h"

namespace krl {

Picture Picture::blank(int32_t width, int32_t height, uint8_t level) {
    Picture picture;
    picture.info.width = width;
    picture.info.height = height;
    picture.info.rowBytes = width * static_cast<int32_t>(sizeof(Pixel));
    const size_t bytes = static_cast<size_t>(picture.info.rowBytes) * static_cast<size_t>(height);
    picture.owner = std::shared_ptr<uint8_t[]>(new uint8_t[bytes]);
    std::memset(picture.owner.get(), level, bytes);
    picture.pixels = picture.owner.get();
    return picture;
}

const char* kindName(ValueKind kind) {
    switch (kind) {
        case ValueKind::Void:
            return "nothing";
        case ValueKind::Integer:
            return "integer";
        case ValueKind::Real:
            return "number";
        case ValueKind::Symbol:
            return "symbol";
        case ValueKind::Text:
            return "string";
        case ValueKind::Colour:
            return "colour";
        case ValueKind::Point:
            return "point";
        case ValueKind::List:
            return "list";
        case ValueKind::PropertyList:
            return "property list";
        case ValueKind::Picture:
        case ValueKind::PictureReference:
            return "picture";
    }
    return "";
}

const Value* findProperty(const PropertyListValue& list, const std::string& key) {
    for (const auto& [name, value] : list) {
        const Symbol* symbol = name.as<Symbol>();
        if (symbol && sameLetters(symbol->name, key)) return &value;
    }
    return nullptr;
}

}  // namespace krl
