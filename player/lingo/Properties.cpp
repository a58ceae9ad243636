#include <algorithm>

#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/ImageTools.h"
#include "player/lingo/Runtime.h"
#include "player/pictures/FileAccess.h"

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
    return Value::integer(countIn(*object.as<StringObject>(), ChunkKind::Char, ','));
}

Value kindSymbol(Runtime& runtime, const Value& object) { return runtime.symbol(ilkName(object.kind())); }

Value imageWidth(Runtime&, const Value& object) { return Value::integer(object.as<ImageObject>()->width()); }
Value imageHeight(Runtime&, const Value& object) {
    return Value::integer(object.as<ImageObject>()->height());
}
Value imageDepth(Runtime&, const Value& object) { return Value::integer(object.as<ImageObject>()->depth); }

Value imageRect(Runtime& runtime, const Value& object) {
    const auto& image = *object.as<ImageObject>();
    return runtime.heap.make<RectObject>(std::array<Value, 4>{
        Value::integer(0), Value::integer(0), Value::integer(image.width()), Value::integer(image.height())});
}

Value paletteRef(Runtime& runtime, const Value& object) {
    return runtime.symbol(paletteName(object.as<ImageObject>()->palette));
}

/// The pixels keep their indexes.
void setPaletteRef(Runtime& runtime, const Value& object, const Value& value) {
    auto& image = *object.as<ImageObject>();
    const Palette palette = paletteNamed(runtime, value);
    if (image.isIndexed())
        for (Pixel& pixel : image.bitmap.pixels)
            pixel = paletteColour(palette, image.depth, nearestIndex(image.palette, image.depth, pixel));
    image.palette = palette;
}

Value useAlpha(Runtime&, const Value& object) { return Value::truth(object.as<ImageObject>()->useAlpha); }

void setUseAlpha(Runtime&, const Value& object, const Value& value) {
    object.as<ImageObject>()->useAlpha = truthOf(value);
}

}  // namespace

const std::vector<std::string>& pictureExtensions() {
    static const std::vector<std::string> extensions = {".png",  ".jpg",  ".jpeg", ".tif",
                                                        ".tiff", ".webp", ".pam"};
    return extensions;
}

namespace {

[[noreturn]] void noFile(Runtime& runtime, const MemberObject& member, const char* what,
                         const std::vector<std::string>& extensions) {
    const std::string start = std::string("there is no ") + what + " for the member ";
    if (member.name.empty() && member.number > 0) throw HostError(start + std::to_string(member.number));
    throw HostError(start + '"' + member.name + '"' +
                    didYouMean(member.name, runtime.sandbox.memberNames(extensions)));
}

/// Read from its file on first use.
Value memberImage(Runtime& runtime, const Value& object) {
    auto& member = *object.as<MemberObject>();
    if (!member.image.isVoid()) return member.image;
    if (const Bitmap* given = runtime.pictures ? runtime.pictures->member(member.name) : nullptr)
        return member.image = runtime.heap.make<ImageObject>(Bitmap(*given));
    const std::filesystem::path file = runtime.sandbox.member(member.name, pictureExtensions());
    if (file.empty()) noFile(runtime, member, "picture", pictureExtensions());
    // Checked again once it is open: its name may have come to mean a file elsewhere.
    return member.image = runtime.heap.make<ImageObject>(readCheckedPicture(runtime.sandbox.placeOf(file)));
}

void setMemberImage(Runtime&, const Value& object, const Value& value) {
    if (!value.is(Kind::Image))
        throw HostError("expected an image for the member, not " + kindName(value.kind()));
    object.as<MemberObject>()->image = value;
}

}  // namespace

/// Read from its file on first use.
Value memberText(Runtime& runtime, const Value& object) {
    auto& member = *object.as<MemberObject>();
    if (!member.text.isVoid()) return member.text;
    const std::vector<std::string> extensions = {".txt"};
    const std::filesystem::path file = runtime.sandbox.member(member.name, extensions);
    if (file.empty()) noFile(runtime, member, "text", extensions);
    return member.text = runtime.text(readCheckedBytes(runtime.sandbox.placeOf(file)));
}

void setMemberText(Runtime& runtime, const Value& object, const Value& value) {
    object.as<MemberObject>()->text = runtime.text(runtime.plain(value));
}

namespace {

Value memberName(Runtime& runtime, const Value& object) {
    return runtime.text(object.as<MemberObject>()->name);
}

void setMemberName(Runtime& runtime, const Value& object, const Value& value) {
    object.as<MemberObject>()->name = runtime.plain(value);
}

Value memberNumber(Runtime& runtime, const Value& object) {
    return Value::integer(runtime.members.numberOf(object));
}

Value memberType(Runtime& runtime, const Value& object) {
    const auto& member = *object.as<MemberObject>();
    const bool picture =
        !member.image.isVoid() || !runtime.sandbox.member(member.name, pictureExtensions()).empty();
    const bool text = !member.text.isVoid() || !runtime.sandbox.member(member.name, {".txt"}).empty();
    return runtime.symbol(picture ? "bitmap" : text ? "text" : "empty");
}

/// The middle of the image, unless it is set.
Value memberRegPoint(Runtime& runtime, const Value& object) {
    const auto& member = *object.as<MemberObject>();
    if (!member.regPoint.isVoid()) return member.regPoint;
    const auto& image = *memberImage(runtime, object).as<ImageObject>();
    return runtime.heap.make<PointObject>(
        std::array<Value, 2>{Value::integer(image.width() / 2), Value::integer(image.height() / 2)});
}

void setMemberRegPoint(Runtime&, const Value& object, const Value& value) {
    if (!value.is(Kind::Point))
        throw HostError("expected a point for the regPoint, not " + kindName(value.kind()));
    object.as<MemberObject>()->regPoint = value;
}

Value regPointIsCentre(Runtime&, const Value& object) {
    return Value::truth(object.as<MemberObject>()->regPoint.isVoid());
}

void centreRegPoint(Runtime& runtime, const Value& object, const Value& value) {
    object.as<MemberObject>()->regPoint = truthOf(value) ? Value() : memberRegPoint(runtime, object);
}

/// Empty for a member that a script has made.
Value memberFile(Runtime& runtime, const Value& object) {
    std::vector<std::string> extensions = pictureExtensions();
    extensions.push_back(".txt");
    return runtime.text(runtime.sandbox.member(object.as<MemberObject>()->name, extensions).string());
}

template <void (*Write)(Runtime&, const Value&, const Value&)>
void setOfMemberImage(Runtime& runtime, const Value& object, const Value& value) {
    Write(runtime, memberImage(runtime, object), value);
}

template <Value (*Read)(Runtime&, const Value&)>
Value ofMemberImage(Runtime& runtime, const Value& object) {
    return Read(runtime, memberImage(runtime, object));
}

template <int Shift>
Value channel(Runtime&, const Value& object) {
    return Value::integer(static_cast<int32_t>(object.colour().word >> Shift & 0xFFu));
}

constexpr PropertyEntry kProperties[] = {
    {Kind::String, "length", textLength, nullptr},
    {Kind::String, "ilk", kindSymbol, nullptr},
    {Kind::List, "count", elementCount<ListObject>, nullptr},
    {Kind::List, "length", elementCount<ListObject>, nullptr},
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
    {Kind::Colour, "colorType",
     [](Runtime& r, const Value& o) {
         return r.symbol(o.colourForm() == ColourForm::PaletteIndex ? "paletteIndex" : "rgb");
     },
     nullptr},
    {Kind::Colour, "paletteIndex", [](Runtime&, const Value& o) { return Value::integer(o.paletteIndex()); },
     nullptr},
    {Kind::Colour, "ilk", kindSymbol, nullptr},
    {Kind::Image, "width", imageWidth, nullptr},
    {Kind::Image, "height", imageHeight, nullptr},
    {Kind::Image, "rect", imageRect, nullptr},
    {Kind::Image, "depth", imageDepth, nullptr},
    {Kind::Image, "useAlpha", useAlpha, setUseAlpha},
    {Kind::Image, "paletteRef", paletteRef, setPaletteRef},
    {Kind::Image, "ilk", kindSymbol, nullptr},
    {Kind::Member, "image", memberImage, setMemberImage},
    {Kind::Member, "name", memberName, setMemberName},
    {Kind::Member, "text", memberText, setMemberText},
    {Kind::Member, "picture", memberImage, setMemberImage},
    {Kind::Member, "media", memberImage, setMemberImage},
    {Kind::Member, "number", memberNumber, nullptr},
    {Kind::Member, "memberNum", memberNumber, nullptr},
    {Kind::Member, "type", memberType, nullptr},
    {Kind::Member, "castLibNum", [](Runtime&, const Value&) { return Value::integer(1); }, nullptr},
    {Kind::Member, "castLib", [](Runtime& r, const Value&) { return r.heap.make<CastLibObject>(); }, nullptr},
    {Kind::Member, "regPoint", memberRegPoint, setMemberRegPoint},
    {Kind::Member, "width", ofMemberImage<imageWidth>, nullptr},
    {Kind::Member, "height", ofMemberImage<imageHeight>, nullptr},
    {Kind::Member, "rect", ofMemberImage<imageRect>, nullptr},
    {Kind::Member, "depth", ofMemberImage<imageDepth>, nullptr},
    {Kind::Member, "useAlpha", ofMemberImage<useAlpha>, setOfMemberImage<setUseAlpha>},
    {Kind::Member, "palette", ofMemberImage<paletteRef>, setOfMemberImage<setPaletteRef>},
    {Kind::Member, "paletteRef", ofMemberImage<paletteRef>, setOfMemberImage<setPaletteRef>},
    {Kind::Member, "centerRegPoint", regPointIsCentre, centreRegPoint},
    {Kind::Member, "fileName", memberFile, nullptr},
    {Kind::Member, "ilk", kindSymbol, nullptr},
};

}  // namespace

std::span<const PropertyEntry> objectProperties() { return kProperties; }

}  // namespace krl::player
