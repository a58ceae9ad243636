#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/Runtime.h"

/// `object.name` for each type.
namespace krl::player {

namespace {

template <class ObjectType, size_t Index>
Value coordinate(Runtime&, const Value& object) {
    return object.as<ObjectType>()->values[Index];
}

template <class ObjectType, size_t Index>
void setCoordinate(Runtime&, const Value& object, const Value& value) {
    if (!value.isNumber())
        throw HostError("expected a number for a coordinate, not " + kindName(value.kind()));
    object.as<ObjectType>()->values[Index] = value;
}

template <size_t Near, size_t Far>
Value extent(Runtime& runtime, const Value& object) {
    const auto& sides = object.as<RectObject>()->values;
    return operate(runtime, Operator::Subtract, sides[Far], sides[Near]);
}

template <class ListType>
Value elementCount(Runtime&, const Value& object) {
    if constexpr (std::is_same_v<ListType, ListObject>)
        return Value::integer(static_cast<int32_t>(object.as<ListObject>()->items.size()));
    else
        return Value::integer(static_cast<int32_t>(object.as<PropertyListObject>()->entries.size()));
}

template <size_t Count>
Value fixedCount(Runtime&, const Value&) {
    return Value::integer(static_cast<int32_t>(Count));
}

Value textLength(Runtime&, const Value& object) {
    return Value::integer(countChunks(object.as<StringObject>()->text, ChunkKind::Char, ','));
}

Value kindSymbol(Runtime& runtime, const Value& object) { return runtime.symbol(ilkName(object.kind())); }

Value imageRect(Runtime& runtime, const Value& object) {
    const auto& image = *object.as<ImageObject>();
    return runtime.heap.make<RectObject>(std::array<Value, 4>{
        Value::integer(0), Value::integer(0), Value::integer(image.width()), Value::integer(image.height())});
}

void setUseAlpha(Runtime&, const Value& object, const Value& value) {
    object.as<ImageObject>()->useAlpha = truthOf(value);
}

const std::vector<std::string>& pictureExtensions() {
    static const std::vector<std::string> extensions = {".png",  ".jpg",  ".jpeg", ".tif",
                                                        ".tiff", ".webp", ".pam"};
    return extensions;
}

/// Read from its file on first use.
Value memberImage(Runtime& runtime, const Value& object) {
    auto& member = *object.as<MemberObject>();
    if (!member.image.isVoid()) return member.image;
    const std::filesystem::path file = runtime.sandbox.member(member.name, pictureExtensions());
    if (file.empty())
        throw HostError("there is no picture for the member \"" + member.name + '"' +
                        didYouMean(member.name, runtime.sandbox.memberNames(pictureExtensions())));
    member.image = runtime.heap.make<ImageObject>(readPicture(file));
    return member.image;
}

void setMemberImage(Runtime&, const Value& object, const Value& value) {
    if (!value.is(Kind::Image))
        throw HostError("expected an image for the member, not " + kindName(value.kind()));
    object.as<MemberObject>()->image = value;
}

Value memberName(Runtime& runtime, const Value& object) {
    return runtime.text(object.as<MemberObject>()->name);
}

template <int Shift>
Value channel(Runtime&, const Value& object) {
    return Value::integer(static_cast<int32_t>(object.colour().word >> Shift & 0xFFu));
}

constexpr PropertyEntry kProperties[] = {
    {Kind::String, "length", textLength, nullptr},
    {Kind::String, "ilk", kindSymbol, nullptr},
    {Kind::List, "count", elementCount<ListObject>, nullptr},
    {Kind::List, "ilk", kindSymbol, nullptr},
    {Kind::PropertyList, "count", elementCount<PropertyListObject>, nullptr},
    {Kind::PropertyList, "ilk", kindSymbol, nullptr},
    {Kind::Point, "locH", coordinate<PointObject, 0>, setCoordinate<PointObject, 0>},
    {Kind::Point, "locV", coordinate<PointObject, 1>, setCoordinate<PointObject, 1>},
    {Kind::Point, "count", fixedCount<2>, nullptr},
    {Kind::Point, "ilk", kindSymbol, nullptr},
    {Kind::Rect, "left", coordinate<RectObject, 0>, setCoordinate<RectObject, 0>},
    {Kind::Rect, "top", coordinate<RectObject, 1>, setCoordinate<RectObject, 1>},
    {Kind::Rect, "right", coordinate<RectObject, 2>, setCoordinate<RectObject, 2>},
    {Kind::Rect, "bottom", coordinate<RectObject, 3>, setCoordinate<RectObject, 3>},
    {Kind::Rect, "width", extent<0, 2>, nullptr},
    {Kind::Rect, "height", extent<1, 3>, nullptr},
    {Kind::Rect, "count", fixedCount<4>, nullptr},
    {Kind::Rect, "ilk", kindSymbol, nullptr},
    {Kind::Colour, "red", channel<0>, nullptr},
    {Kind::Colour, "green", channel<8>, nullptr},
    {Kind::Colour, "blue", channel<16>, nullptr},
    {Kind::Colour, "colorType", [](Runtime& r, const Value&) { return r.symbol("rgb"); }, nullptr},
    {Kind::Colour, "ilk", kindSymbol, nullptr},
    {Kind::Image, "width",
     [](Runtime&, const Value& o) { return Value::integer(o.as<ImageObject>()->width()); }, nullptr},
    {Kind::Image, "height",
     [](Runtime&, const Value& o) { return Value::integer(o.as<ImageObject>()->height()); }, nullptr},
    {Kind::Image, "rect", imageRect, nullptr},
    {Kind::Image, "depth",
     [](Runtime&, const Value& o) { return Value::integer(o.as<ImageObject>()->depth); }, nullptr},
    {Kind::Image, "useAlpha",
     [](Runtime&, const Value& o) { return Value::truth(o.as<ImageObject>()->useAlpha); }, setUseAlpha},
    {Kind::Image, "ilk", kindSymbol, nullptr},
    {Kind::Member, "image", memberImage, setMemberImage},
    {Kind::Member, "name", memberName, nullptr},
};

}  // namespace

std::span<const PropertyEntry> objectProperties() { return kProperties; }

}  // namespace krl::player
