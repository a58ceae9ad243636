#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/ImageTools.h"
#include "player/lingo/Runtime.h"

/// The cast and its members.
namespace krl::player {

namespace {

constexpr const char* kCastName = "Internal";

/// By its name or its number.
Value memberNamed(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::Member)) return arguments[0];
    if (arguments[0].isNumber()) return runtime.members.numbered(arguments.integer(0));
    return runtime.members.named(arguments.text(0));
}

/// The text of a member.
Value field(Runtime& runtime, const Arguments& arguments) {
    return memberText(runtime, memberNamed(runtime, arguments));
}

/// `castLib(1)`, `castLib "Internal"`
Value castLib(Runtime& runtime, const Arguments& arguments) {
    const Value& wanted = arguments[0];
    const bool first = wanted.isInteger() && wanted.integer() == 1;
    if (!first && !sameText(runtime.plain(wanted), kCastName))
        throw HostError("there is no castLib " + shownText(runtime.style(), wanted) + ", only 1, \"" +
                        kCastName + '"');
    return runtime.heap.make<CastLibObject>();
}

/// `new(#bitmap)`, `new(#text, member(5))`: a member that is nowhere in a file.
Value newMember(Runtime& runtime, const Arguments& arguments) {
    const std::string kind = folded(runtime.symbols.spelling(arguments.symbol(0)));
    if (kind != "bitmap" && kind != "text" && kind != "field")
        arguments.mismatch(0, "#bitmap, #text or #field");
    const bool placed = arguments[1].is(Kind::Member);
    Value made = placed ? arguments[1] : runtime.heap.make<MemberObject>("");
    auto& member = *made.as<MemberObject>();
    if (kind != "bitmap")
        member.text = runtime.text("");
    else
        member.image = makeImage(runtime.heap, 1, 1);
    if (!placed) runtime.members.add(made);
    return made;
}

/// `findEmpty(member 5)`: the number of the first empty member from there on.
Value findEmpty(Runtime& runtime, const Arguments& arguments) {
    if (!arguments[0].is(Kind::Member)) arguments.mismatch(0, "a member");
    return Value::integer(runtime.members.nextEmpty(arguments[0]));
}

/// Empties a member.
Value erase(Runtime&, const Arguments& arguments) {
    auto& member = arguments.object<MemberObject>(0);
    member.name.clear();
    member.dropChildren();
    return Value();
}

constexpr Builtin kBuiltins[] = {
    {"member", 1, 2, memberNamed},  {"cast", 1, 2, memberNamed},    {"field", 1, 2, field},
    {"castLib", 1, 1, castLib},     {"newMember", 1, 2, newMember}, {"erase", 1, 1, erase},
    {"findEmpty", 1, 1, findEmpty},
};

template <const char* const& Function, const char* const& Count>
Value collection(Runtime& runtime, const Value&) {
    return runtime.heap.make<CollectionObject>(Function, Count);
}

constexpr const char* kMember = "member";
constexpr const char* kCastLib = "castLib";
constexpr const char* kXtra = "xtra";
constexpr const char* kMembers = "number of members";
constexpr const char* kCastLibs = "number of castLibs";
constexpr const char* kXtras = "number of xtras";

Value memberCount(Runtime& runtime, const Value&) { return Value::integer(runtime.members.count()); }
Value one(Runtime&, const Value&) { return Value::integer(1); }
Value castName(Runtime& runtime, const Value&) { return runtime.text(kCastName); }
Value castFile(Runtime& runtime, const Value&) {
    return runtime.text((runtime.sandbox.scriptFolder() / "").string());
}

constexpr PropertyEntry kProperties[] = {
    {Kind::Void, "member", collection<kMember, kMembers>, nullptr},
    {Kind::Void, "castLib", collection<kCastLib, kCastLibs>, nullptr},
    {Kind::Void, "xtra", collection<kXtra, kXtras>, nullptr},
    {Kind::Void, "number of members", memberCount, nullptr},
    {Kind::Void, "number of castMembers", memberCount, nullptr},
    {Kind::Void, "number of castLibs", one, nullptr},
    {Kind::Void, "number of xtras", one, nullptr},
    {Kind::CastLib, "number of members", memberCount, nullptr},
    {Kind::CastLib, "number of castMembers", memberCount, nullptr},
    {Kind::CastLib, "member", collection<kMember, kMembers>, nullptr},
    {Kind::CastLib, "name", castName, nullptr},
    {Kind::CastLib, "number", one, nullptr},
    {Kind::CastLib, "fileName", castFile, nullptr},
};

}  // namespace

Value duplicateMember(Runtime& runtime, const Value& member, const Value& place) {
    const auto part = [&](const char* name) { return runtime.propertyNamed(member, runtime.symbol(name)); };
    const std::string type = runtime.plain(part("type"));
    Value made = place.is(Kind::Member) ? place
                 : place.isInteger()    ? runtime.members.numbered(place.integer())
                                        : runtime.heap.make<MemberObject>("");
    auto& copy = *made.as<MemberObject>();
    if (type == "bitmap") copy.image = duplicateImage(runtime, *part("image").as<ImageObject>());
    if (type == "text") copy.text = part("text");
    if (type == "bitmap") copy.regPoint = part("regPoint");
    const std::string& name = member.as<MemberObject>()->name;
    if (!name.empty()) copy.name = name;
    if (place.isVoid()) runtime.members.add(made);
    return made;
}

std::span<const Builtin> castBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> castProperties() { return kProperties; }

}  // namespace krl::player
