#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Runtime.h"

/// What a movie, the player and the system are like without a stage.
namespace krl::player {

namespace {

#if defined(_WIN32)
constexpr const char* kPlatform = "Windows,32";
#elif defined(__APPLE__)
constexpr const char* kPlatform = "Macintosh,64";
#else
constexpr const char* kPlatform = "Linux,64";
#endif

template <int32_t Number>
Value number(Runtime&, const Value&) {
    return Value::integer(Number);
}

Value nothing(Runtime& runtime, const Value&) { return runtime.text(""); }
Value platform(Runtime& runtime, const Value&) { return runtime.text(kPlatform); }
Value movieName(Runtime& runtime, const Value&) { return runtime.text(runtime.scriptFile); }
Value frame(Runtime& runtime, const Value&) { return Value::integer(runtime.frameNumber); }
Value result(Runtime& runtime, const Value&) { return runtime.result; }
Value freeBytes(Runtime&, const Value&) { return Value::integer(INT32_MAX); }
Value folder(Runtime& runtime, const Value&) {
    return runtime.text((runtime.sandbox.scriptFolder() / "").string());
}

Value newList(Runtime& runtime) { return runtime.heap.make<ListObject>(); }

Value actorList(Runtime& runtime, const Value&) {
    if (runtime.actorList.isVoid()) runtime.actorList = newList(runtime);
    return runtime.actorList;
}

void setActorList(Runtime& runtime, const Value&, const Value& value) {
    if (!value.is(Kind::List))
        throw HostError("expected a list for the actorList, not " + kindName(value.kind()));
    runtime.actorList = value;
}

void put(Runtime& runtime, PropertyListObject& list, const char* key, Value value) {
    list.entries.push_back({runtime.symbol(key), std::move(value)});
    runtime.heap.recount(list);
}

Value environment(Runtime& runtime, const Value&) {
    Value made = runtime.heap.make<PropertyListObject>();
    auto& list = *made.as<PropertyListObject>();
    put(runtime, list, "platform", runtime.text(kPlatform));
    put(runtime, list, "runMode", runtime.text("Player"));
    put(runtime, list, "colorDepth", Value::integer(32));
    put(runtime, list, "productVersion", runtime.text(runtime.host.applicationVersion));
    return made;
}

Value xtraList(Runtime& runtime, const Value&) {
    Value entry = runtime.heap.make<PropertyListObject>();
    put(runtime, *entry.as<PropertyListObject>(), "name", runtime.text(runtime.xtra.name()));
    Value made = newList(runtime);
    made.as<ListObject>()->items.push_back(std::move(entry));
    runtime.heap.recount(*made.as<ListObject>());
    return made;
}

/// A setting that changes nothing without a stage.
void ignored(Runtime&, const Value&, const Value&) {}

constexpr PropertyEntry kProperties[] = {
    {Kind::Void, "platform", platform, nullptr},
    {Kind::Void, "environment", environment, nullptr},
    {Kind::Void, "environmentPropList", environment, nullptr},
    {Kind::Void, "colorDepth", number<32>, ignored},
    {Kind::Void, "applicationName", [](Runtime& r, const Value&) { return r.text("krlimage"); }, nullptr},
    {Kind::Void, "movieName", movieName, nullptr},
    {Kind::Void, "movie", movieName, nullptr},
    {Kind::Void, "name", movieName, nullptr},
    {Kind::Void, "pathName", folder, nullptr},
    {Kind::Void, "path", folder, nullptr},
    {Kind::Void, "applicationPath", folder, nullptr},
    {Kind::Void, "frame", frame, nullptr},
    {Kind::Void, "lastFrame", frame, nullptr},
    {Kind::Void, "actorList", actorList, setActorList},
    {Kind::Void, "result", result, nullptr},
    {Kind::Void, "freeBytes", freeBytes, nullptr},
    {Kind::Void, "freeBlock", freeBytes, nullptr},
    {Kind::Void, "memorySize", freeBytes, nullptr},
    {Kind::Void, "activeCastLib", number<1>, nullptr},
    {Kind::Void, "scriptExecutionStyle", number<10>, nullptr},
    {Kind::Void, "userName", nothing, nullptr},
    {Kind::Void, "organizationName", nothing, nullptr},
    {Kind::Void, "serialNumber", nothing, nullptr},
    {Kind::Void, "xtraList", xtraList, nullptr},
    {Kind::Void, "shiftDown", number<0>, nullptr},
    {Kind::Void, "commandDown", number<0>, nullptr},
    {Kind::Void, "controlDown", number<0>, nullptr},
    {Kind::Void, "optionDown", number<0>, nullptr},
    {Kind::Void, "key", nothing, nullptr},
    {Kind::Void, "keyCode", number<0>, nullptr},
    {Kind::Void, "mouseDown", number<0>, nullptr},
    {Kind::Void, "mouseUp", number<1>, nullptr},
    {Kind::Void, "rightMouseDown", number<0>, nullptr},
    {Kind::Void, "rightMouseUp", number<1>, nullptr},
    {Kind::Void, "stillDown", number<0>, nullptr},
    {Kind::Void, "doubleClick", number<0>, nullptr},
    {Kind::Void, "exitLock", number<0>, ignored},
    {Kind::Void, "trace", number<0>, ignored},
    {Kind::Void, "traceLoad", number<0>, ignored},
    {Kind::Void, "traceScript", number<0>, ignored},
    {Kind::Void, "preLoadRAM", number<0>, ignored},
    {Kind::Void, "romanLingo", number<0>, ignored},
    {Kind::Void, "quickTimePresent", number<0>, nullptr},
    {Kind::Void, "machineType", number<256>, nullptr},
    {Kind::Void, "safePlayer", number<1>, ignored},
    {Kind::Void, "debugPlaybackEnabled", number<0>, ignored},
};

}  // namespace

std::span<const PropertyEntry> movieProperties() { return kProperties; }

}  // namespace krl::player
