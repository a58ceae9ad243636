#include "player/host/EmbeddedHost.h"
#include "player/host/Objects.h"

/// Conversions between values and plain numbers. An integer converts to a float; otherwise the
/// types must match.
namespace krl::player {

using namespace host;

namespace {

/// The status for a value of the wrong type.
HostStatus mismatch(HostInterface* self, const ScriptValue* value) {
    const bool stale = onHeap(*value) && kindOf(*value) != Kind::Float && !hostOf(self).heap.find(*value);
    return stale ? kStaleValue : kWrongKind;
}

HostStatus KRL_HOST_CALL internSymbol(HostInterface* self, const char* name, SymbolId* symbol) {
    return guardedAnswer(self, [&] {
        *symbol = hostOf(self).symbols.symbol(name);
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL releaseValue(HostInterface* self, ScriptValue* value) {
    const bool released = hostOf(self).heap.release(*value);
    *value = {};
    return released ? kHostOk : kStaleValue;
}

HostStatus KRL_HOST_CALL valueToInteger(HostInterface* self, const ScriptValue* value, int32_t* number) {
    if (kindOf(*value) != Kind::Integer) return mismatch(self, value);
    *number = value->words[1];
    return kHostOk;
}

HostStatus KRL_HOST_CALL valueToSymbol(HostInterface* self, const ScriptValue* value, SymbolId* symbol) {
    if (kindOf(*value) != Kind::Symbol) return mismatch(self, value);
    *symbol = value->words[1];
    return kHostOk;
}

HostStatus KRL_HOST_CALL valueToFloat(HostInterface* self, const ScriptValue* value, double* number) {
    if (kindOf(*value) == Kind::Integer) {
        *number = value->words[1];
        return kHostOk;
    }
    if (kindOf(*value) != Kind::Float) return mismatch(self, value);
    return hostOf(self).heap.findNumber(*value, *number) ? kHostOk : kStaleValue;
}

/// Lingo's `point(h, v)` as integers, row first.
HostStatus KRL_HOST_CALL valueToPoint(HostInterface* self, const ScriptValue* value, Point* point) {
    const Object* object = kindOf(*value) == Kind::Point ? hostOf(self).heap.find(*value) : nullptr;
    if (!object) return mismatch(self, value);
    const auto& values = static_cast<const PointObject*>(object)->values;
    if (!values[0].isInteger() || !values[1].isInteger()) return kWrongKind;
    *point = {values[1].integer(), values[0].integer()};
    return kHostOk;
}

HostStatus KRL_HOST_CALL integerToValue(HostInterface*, int32_t number, ScriptValue* value) {
    *value = Value::integer(number).release();
    return kHostOk;
}

HostStatus KRL_HOST_CALL symbolToValue(HostInterface* self, SymbolId symbol, ScriptValue* value) {
    *value = {};
    if (!hostOf(self).symbols.contains(symbol)) return kNoSuchElement;
    *value = Value::symbol(symbol).release();
    return kHostOk;
}

HostStatus KRL_HOST_CALL floatToValue(HostInterface* self, double number, ScriptValue* value) {
    return guardedAnswer(self, [&] {
        *value = hostOf(self).heap.number(number).release();
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL stringToValue(HostInterface* self, const char* text, ScriptValue* value) {
    return guardedAnswer(self, [&] {
        *value = hostOf(self).heap.string(text).release();
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL valueToColor(HostInterface* self, const ScriptValue* value, ColourRecord* record) {
    if (kindOf(*value) != Kind::Colour) return mismatch(self, value);
    const Colour colour(static_cast<uint32_t>(value->words[1]));
    *record = {colour.red(), colour.green(), colour.blue(), 1};
    return kHostOk;
}

HostStatus KRL_HOST_CALL colorToValue(HostInterface*, const ColourRecord* record, ScriptValue* value) {
    *value = Value::colour(record->colour()).release();
    return kHostOk;
}

}  // namespace

void fillValueOperations(Service& conversions, Service& colourConversions) {
    conversions.set<values::InternSymbol>(internSymbol)
        .set<values::ReleaseValue>(releaseValue)
        .set<values::ValueToInteger>(valueToInteger)
        .set<values::ValueToSymbol>(valueToSymbol)
        .set<values::ValueToFloat>(valueToFloat)
        .set<values::ValueToPoint>(valueToPoint)
        .set<values::IntegerToValue>(integerToValue)
        .set<values::SymbolToValue>(symbolToValue)
        .set<values::FloatToValue>(floatToValue)
        .set<values::StringToValue>(stringToValue);
    colourConversions.set<colours::ValueToColor>(valueToColor).set<colours::ColorToValue>(colorToValue);
}

}  // namespace krl::player
