#include <algorithm>
#include <chrono>
#include <ctime>

#include "catalogue/NearestName.h"
#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Interpreter.h"

/// The player itself: messages, objects, the cast, and system properties.
namespace krl::player {

namespace {

Value alert(Runtime& runtime, const Arguments& arguments) {
    writeLines(runtime.alerts, runtime.plain(arguments[0]) + '\n');
    return Value();
}

Value halt(Runtime&, const Arguments&) { throw Halt(); }
Value abortHandlers(Runtime&, const Arguments&) { throw Halt{true}; }

/// By its name, or as the first one.
Value xtraNamed(Runtime& runtime, const Arguments& arguments) {
    const bool first = arguments[0].isInteger() && arguments[0].integer() == 1;
    const std::string& name = first ? runtime.xtra.name() : arguments.text(0);
    if (!sameText(name, runtime.xtra.name()))
        throw HostError("there is no xtra \"" + name + "\", only \"" + runtime.xtra.name() + '"');
    return runtime.heap.make<XtraObject>(runtime.xtra);
}

Value scriptNamed(Runtime& runtime, const Arguments& arguments) {
    return runtime.scriptNamed(arguments.text(0));
}

Value paramCount(Runtime& runtime, const Arguments&) {
    return Value::integer(static_cast<int32_t>(runtime.handlerArguments().size()));
}

Value makeNew(Runtime& runtime, const Arguments& arguments) {
    if (const auto* plugIn = arguments[0].as<XtraObject>()) return plugIn->xtra.newInstance();
    if (arguments[0].is(Kind::Symbol)) return runtime.send(runtime.newMemberName, arguments.from(0));
    if (!arguments[0].is(Kind::Script)) arguments.mismatch(0, "an xtra or a script");
    return runtime.newInstance(arguments[0], arguments.from(1));
}

Value parameter(Runtime& runtime, const Arguments& arguments) {
    const std::span<const Value> given = runtime.handlerArguments();
    const int32_t index = arguments.integer(0);
    return index >= 1 && static_cast<size_t>(index) <= given.size() ? given[static_cast<size_t>(index - 1)]
                                                                    : Value();
}

Value clearGlobals(Runtime& runtime, const Arguments&) {
    runtime.clearGlobals();
    return Value();
}

template <void (Runtime::*Show)()>
Value show(Runtime& runtime, const Arguments&) {
    (runtime.*Show)();
    return Value();
}

/// Counted from the first use, to keep the numbers small.
int64_t milliseconds() {
    using namespace std::chrono;
    static const auto start = steady_clock::now();
    return duration_cast<std::chrono::milliseconds>(steady_clock::now() - start).count();
}

Value now(Runtime& runtime, const char* format) {
    const std::time_t seconds = std::time(nullptr);
    char text[64] = {};
#if defined(_WIN32)
    std::strftime(text, sizeof(text), format, std::localtime(&seconds));
#else
    std::tm parts{};
    std::strftime(text, sizeof(text), format, localtime_r(&seconds, &parts));
#endif
    return runtime.text(text);
}

int32_t wholeOf(const Value& value, const char* name) {
    if (!value.isNumber())
        throw HostError(std::string("expected a number for the ") + name + ", not " + kindName(value.kind()));
    return value.isInteger() ? value.integer() : rounded(value.number());
}

void setFloatPrecision(Runtime& runtime, const Value&, const Value& value) {
    runtime.settings.floatPrecision = std::clamp(wholeOf(value, "floatPrecision"), -15, 15);
}

void setItemDelimiter(Runtime& runtime, const Value&, const Value& value) {
    const std::string text = runtime.plain(value);
    if (text.size() != 1)
        throw HostError("expected one character for the itemDelimiter, not \"" + text + '"');
    runtime.settings.itemDelimiter = text.front();
}

void setRandomSeed(Runtime& runtime, const Value&, const Value& value) {
    runtime.settings.randomSeed = wholeOf(value, "randomSeed");
}

Value startTimer(Runtime& runtime, const Arguments&) {
    runtime.settings.timerStart = milliseconds();
    return Value();
}

Value integerOf(int64_t number) {
    return Value::integer(static_cast<int32_t>(static_cast<uint32_t>(number)));
}

/// A name without its folder, counted from 1; EMPTY behind the last one.
Value fileNameInFolder(Runtime& runtime, const Arguments& arguments) {
    const std::vector<std::string> names = runtime.sandbox.namesIn(arguments.text(0));
    const auto index = static_cast<size_t>(std::max(arguments.integer(1), 0));
    return runtime.text(index >= 1 && index <= names.size() ? names[index - 1] : "");
}

Value time(Runtime& runtime, const Arguments&) { return now(runtime, "%H:%M"); }

/// No key is ever down.
Value keyPressed(Runtime&, const Arguments&) { return Value::truth(false); }

Value ticksSince(int64_t start) { return integerOf((milliseconds() - start) * 60 / 1000); }

constexpr Builtin kBuiltins[] = {
    {"alert", 1, 1, alert},
    {"halt", 0, 0, halt},
    {"quit", 0, 0, halt},
    {"abort", 0, 0, abortHandlers},
    {"xtra", 1, 1, xtraNamed},
    {"script", 1, 1, scriptNamed},
    {"new", 1, kAnyNumber, makeNew},
    {"paramCount", 0, 0, paramCount},
    {"param", 1, 1, parameter},
    {"clearGlobals", 0, 0, clearGlobals},
    {"showGlobals", 0, 0, show<&Runtime::showGlobals>},
    {"showLocals", 0, 0, show<&Runtime::showLocals>},
    {"startTimer", 0, 0, startTimer},
    {"time", 0, 0, time},
    {"keyPressed", 0, 1, keyPressed},
    {"getNthFileNameInFolder", 2, 2, fileNameInFolder},
};

constexpr PropertyEntry kProperties[] = {
    {Kind::Void, "milliseconds", [](Runtime&, const Value&) { return integerOf(milliseconds()); }, nullptr},
    {Kind::Void, "ticks", [](Runtime&, const Value&) { return ticksSince(0); }, nullptr},
    {Kind::Void, "timer", [](Runtime& r, const Value&) { return ticksSince(r.settings.timerStart); },
     nullptr},
    {Kind::Void, "time", [](Runtime& r, const Value&) { return now(r, "%H:%M"); }, nullptr},
    {Kind::Void, "date", [](Runtime& r, const Value&) { return now(r, "%Y-%m-%d"); }, nullptr},
    {Kind::Void, "floatPrecision",
     [](Runtime& r, const Value&) { return Value::integer(r.settings.floatPrecision); }, setFloatPrecision},
    {Kind::Void, "itemDelimiter",
     [](Runtime& r, const Value&) { return r.text(std::string(1, r.settings.itemDelimiter)); },
     setItemDelimiter},
    {Kind::Void, "randomSeed", [](Runtime& r, const Value&) { return Value::integer(r.settings.randomSeed); },
     setRandomSeed},
    {Kind::Void, "paramCount",
     [](Runtime& r, const Value&) { return integerOf(static_cast<int64_t>(r.handlerArguments().size())); },
     nullptr},
    {Kind::Void, "maxInteger", [](Runtime&, const Value&) { return Value::integer(INT32_MAX); }, nullptr},
    {Kind::Void, "moviePath",
     [](Runtime& r, const Value&) { return r.text((r.sandbox.scriptFolder() / "").string()); }, nullptr},
    {Kind::Void, "runMode", [](Runtime& r, const Value&) { return r.text("Player"); }, nullptr},
    {Kind::Void, "productVersion", [](Runtime& r, const Value&) { return r.text(r.host.applicationVersion); },
     nullptr},
};

}  // namespace

std::span<const Builtin> systemBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> systemProperties() { return kProperties; }

}  // namespace krl::player
