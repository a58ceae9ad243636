#include "player/lingo/PlainValue.h"

#include <cstring>

#include "player/host/Objects.h"

namespace krl::player {

namespace {

krl::Picture pictureOf(const Bitmap& bitmap) {
    krl::Picture picture = krl::Picture::blank(bitmap.width, bitmap.height);
    if (!bitmap.pixels.empty())
        std::memcpy(picture.pixels, bitmap.pixels.data(), bitmap.pixels.size() * sizeof(Pixel));
    return picture;
}

/// Methods accept only points with integer coordinates.
krl::Value placeOf(const PointObject& point) {
    const auto& [across, down] = point.values;
    if (!across.isInteger() || !down.isInteger()) return {};
    return Point{.y = down.integer(), .x = across.integer()};
}

}  // namespace

krl::Value plainValue(const SymbolTable& symbols, const Value& value) {
    switch (value.kind()) {
        case Kind::Integer:
            return value.integer();
        case Kind::Float:
            return value.number();
        case Kind::Symbol:
            return Symbol{symbols.spelling(value.symbol())};
        case Kind::Colour:
            return value.colour();
        case Kind::String:
            return value.as<StringObject>()->text;
        case Kind::Point:
            return placeOf(*value.as<PointObject>());
        case Kind::Image:
            return pictureOf(value.as<ImageObject>()->bitmap);
        case Kind::List: {
            ListValue list;
            for (const Value& item : value.as<ListObject>()->items) list.push_back(plainValue(symbols, item));
            return list;
        }
        case Kind::PropertyList: {
            PropertyListValue list;
            for (const auto& [key, item] : value.as<PropertyListObject>()->entries)
                list.emplace_back(plainValue(symbols, key), plainValue(symbols, item));
            return list;
        }
        default:
            return {};
    }
}

}  // namespace krl::player
