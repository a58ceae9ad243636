#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/Runtime.h"

/// Scripts and their instances: messages, handlers, texts that are run.
namespace krl::player {

namespace {

/// The objects that a message goes to: the values of a list, or one object.
std::vector<Value> receivers(const Value& to) {
    if (const auto* list = to.as<ListObject>()) return list->items;
    std::vector<Value> found;
    if (const auto* properties = to.as<PropertyListObject>())
        for (const auto& entry : properties->entries) found.push_back(entry.value);
    else
        found.push_back(to);
    return found;
}

/// `call(#name, object, ...)`, or for each object of a list, where objects without that handler are
/// skipped; returns the last result.
Value call(Runtime& runtime, const Arguments& arguments) {
    const SymbolId name = arguments.symbol(0);
    const bool several = arguments[1].is(Kind::List) || arguments[1].is(Kind::PropertyList);
    if (!several) return runtime.send(name, arguments.from(1));
    Value answer;
    for (const Value& receiver : receivers(arguments[1])) {
        if (!runtime.responds(receiver, name)) continue;
        std::vector<Value> all = {receiver};
        all.insert(all.end(), arguments.from(2).begin(), arguments.from(2).end());
        answer = runtime.send(name, all);
    }
    return answer;
}

/// `callAncestor(#name, me, ...)`: the handler of the ancestor, with `me` as it is.
Value callAncestor(Runtime& runtime, const Arguments& arguments) {
    Value answer;
    for (const Value& receiver : receivers(arguments[1])) {
        std::vector<Value> all = {receiver};
        all.insert(all.end(), arguments.from(2).begin(), arguments.from(2).end());
        answer = runtime.sendToAncestor(arguments.symbol(0), all);
    }
    return answer;
}

Value hasHandler(Runtime& runtime, const Arguments& arguments) {
    return Value::truth(runtime.responds(arguments[0], arguments.symbol(1)));
}

const Script* syntaxOf(const Value& object) {
    if (const auto* script = object.as<ScriptObject>()) return script->script.syntax.get();
    const auto* instance = object.as<InstanceObject>();
    return instance ? instance->script.syntax.get() : nullptr;
}

Value handlers(Runtime& runtime, const Arguments& arguments) {
    const Script* syntax = syntaxOf(arguments[0]);
    if (!syntax) arguments.mismatch(0, "a script or an instance of one");
    Value made = runtime.heap.make<ListObject>();
    for (const auto& handler : syntax->handlers)
        made.as<ListObject>()->items.push_back(Value::symbol(handler->name));
    runtime.heap.recount(*made.as<ListObject>());
    return made;
}

Value rawNew(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.make<InstanceObject>(arguments.object<ScriptObject>(0).script);
}

Value runText(Runtime& runtime, const Arguments& arguments) {
    runtime.runText(arguments.text(0));
    return Value();
}

Value result(Runtime& runtime, const Arguments&) { return runtime.result; }

template <const char* const& Name>
Value environment(Runtime& runtime, const Arguments&) {
    return runtime.heap.make<EnvironmentObject>(Name);
}

constexpr const char* kMovie = "_movie";
constexpr const char* kPlayer = "_player";
constexpr const char* kSystem = "_system";
constexpr const char* kGlobal = "_global";
constexpr const char* kKey = "_key";
constexpr const char* kMouse = "_mouse";

constexpr Builtin kBuiltins[] = {
    {"call", 2, kAnyNumber, call},
    {"callAncestor", 2, kAnyNumber, callAncestor},
    {"handler", 2, 2, hasHandler},
    {"handlers", 1, 1, handlers},
    {"rawNew", 1, 1, rawNew},
    {"do", 1, 1, runText},
    {"result", 0, 0, result},
    {"_movie", 0, 0, environment<kMovie>},
    {"_player", 0, 0, environment<kPlayer>},
    {"_system", 0, 0, environment<kSystem>},
    {"_global", 0, 0, environment<kGlobal>},
    {"_key", 0, 0, environment<kKey>},
    {"_mouse", 0, 0, environment<kMouse>},
};

Value scriptOf(Runtime& runtime, const Value& object) {
    return runtime.scriptNamed(object.as<InstanceObject>()->name());
}

Value holderName(Runtime& runtime, const Value& object) {
    return runtime.text(object.as<ScriptObject>()->name());
}

template <class Holder>
Value propertyCount(Runtime&, const Value& object) {
    return Value::integer(static_cast<int32_t>(object.as<Holder>()->properties.size()));
}

Value kindSymbol(Runtime& runtime, const Value& object) { return runtime.symbol(ilkName(object.kind())); }

constexpr PropertyEntry kProperties[] = {
    {Kind::ScriptInstance, "script", scriptOf, nullptr},
    {Kind::ScriptInstance, "count", propertyCount<InstanceObject>, nullptr},
    {Kind::ScriptInstance, "ilk", kindSymbol, nullptr},
    {Kind::Script, "name", holderName, nullptr},
    {Kind::Script, "count", propertyCount<ScriptObject>, nullptr},
    {Kind::Script, "ilk", kindSymbol, nullptr},
};

}  // namespace

std::span<const Builtin> objectBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> scriptProperties() { return kProperties; }

}  // namespace krl::player
