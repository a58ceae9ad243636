#include <algorithm>

#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/Compare.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/StageNames.h"

/// Properties and elements of objects, and variables that are shown.
namespace krl::player {

Value Interpreter::property(const Value& object, SymbolId name) {
    if (const auto* environment = object.as<EnvironmentObject>())
        return environmentProperty(*environment, name);
    if (const auto* collection = object.as<CollectionObject>(); collection && name == countName_)
        return systemProperty(symbols.identifier(collection->counted));
    if (skipsStage() && object.isVoid()) return Value();
    if (const auto* list = object.as<PropertyListObject>()) {
        if (const auto* entry = findEntry(symbols, *list, Value::symbol(name))) return entry->value;
    } else if (holderOf(object)) {
        if (const Value* found = instanceProperty(object, name)) return *found;
    }
    if (const PropertyEntry* entry = propertyOf(object.kind(), name)) return entry->read(*this, object);
    if (const Builtin* function = functionAsProperty(object.kind(), name))
        return callBuiltin(*function, {&object, 1}, true);
    if (needsLayout(object, name)) return missing("a stage", name, nullptr);
    unknownProperty(object, name);
}

bool Interpreter::needsLayout(const Value& object, SymbolId name) const {
    return object.is(Kind::Member) && isOfStageObjects(symbols.spelling(name));
}

Value Interpreter::propertyNamed(const Value& object, const Value& name) {
    return property(object, symbols.identifier(plain(name)));
}

void Interpreter::setPropertyNamed(const Value& object, const Value& name, const Value& value) {
    const SymbolId property = symbols.identifier(plain(name));
    Value* place = instanceProperty(object, property);
    if (!place) unknownProperty(object, property);
    const Value gone = std::exchange(*place, value);
}

/// A function of one number, string or symbol can be written as a property: `"12".integer`.
const Builtin* Interpreter::functionAsProperty(Kind kind, SymbolId name) const {
    const Builtin* known = builtin(name);
    const bool plain =
        kind == Kind::Integer || kind == Kind::Float || kind == Kind::Symbol || kind == Kind::String;
    if (!known || !plain || known->least != 1) return nullptr;
    for (const auto& family : {mathBuiltins(), textBuiltins()})
        for (const Builtin& entry : family)
            if (&entry == known) return known;
    return nullptr;
}

/// The last ancestor can be a property list.
Value* Interpreter::instanceProperty(const Value& object, SymbolId name) {
    if (PropertyHolder* holder = holderOf(object))
        if (Value* found = holder->property(name)) return found;
    Value at = object;
    for (int links = 0; links < kDeepestNesting; ++links) {
        if (auto* list = at.as<PropertyListObject>(); list && links > 0) {
            const auto* entry = findEntry(symbols, *list, Value::symbol(name));
            return entry ? const_cast<Value*>(&entry->value) : nullptr;
        }
        PropertyHolder* holder = holderOf(at);
        if (!holder) return nullptr;
        if (Value* found = holder->property(name)) return found;
        if (name == ancestorName_) return &holder->ancestor;
        at = Value(ancestorOf(*holder));
    }
    return nullptr;
}

/// A global variable, or the system property of that name.
Value Interpreter::environmentProperty(const EnvironmentObject& environment, SymbolId name) {
    if (std::string_view(environment.name) != "_global") return systemProperty(name);
    return globals_.named(name);
}

Value Interpreter::systemProperty(SymbolId property) {
    if (const PropertyEntry* entry = propertyOf(Kind::Void, property)) return entry->read(*this, Value());
    const std::string& name = symbols.spelling(property);
    if (const char* need = neededBy(name)) return missing(need, property, nullptr);
    throw HostError("there is no \"the " + name + '"' + didYouMean(name, propertyNames(Kind::Void)));
}

/// `object[index]`
Value Interpreter::item(const Value& object, const Value& index) {
    if (skipsStage() && object.isVoid()) return Value();
    if (holderOf(object) && index.is(Kind::Symbol)) return property(object, index.symbol());
    if (object.is(Kind::Environment)) return propertyNamed(object, index);
    if (const auto* collection = object.as<CollectionObject>())
        return callByName(symbols.identifier(collection->of), {&index, 1}, false);
    if (object.isVoid()) throw HostError("expected a list before the brackets, not VOID" + unsetName(object));
    return elementOf(*this, object, index);
}

void Interpreter::setSystemProperty(SymbolId name, const Value& value) {
    const PropertyEntry* entry = propertyOf(Kind::Void, name);
    if (entry && entry->write) return entry->write(*this, Value(), value);
    const std::string& spelled = symbols.spelling(name);
    const char* need = entry ? nullptr : neededBy(spelled);
    if (!need) throw HostError("\"the " + spelled + "\" cannot be set");
    missing(need, name, nullptr);
}

/// `object[index] = value`
void Interpreter::setItem(const Value& object, const Value& index, const Value& value) {
    if (skipsStage() && object.isVoid()) return;
    if (object.is(Kind::Environment)) return setProperty(object, symbols.identifier(plain(index)), value);
    if (object.isVoid()) throw HostError("expected a list before the brackets, not VOID" + unsetName(object));
    Value* property = index.is(Kind::Symbol) ? instanceProperty(object, index.symbol()) : nullptr;
    if (!property) return setElement(*this, object, index, value);
    const Value gone = std::exchange(*property, value);
}

/// `object.name = value`, except for a channel of a colour.
void Interpreter::setProperty(const Value& object, SymbolId name, const Value& value) {
    if (auto* properties = object.as<PropertyListObject>())
        return setEntry(*this, *properties, Value::symbol(name), value);
    if (Value* place = instanceProperty(object, name)) {
        *place = value;
        return;
    }
    if (const auto* environment = object.as<EnvironmentObject>()) {
        if (std::string_view(environment->name) != "_global") return setSystemProperty(name, value);
        globals_.named(name) = value;
        return;
    }
    if (skipsStage() && object.isVoid()) return;
    const PropertyEntry* entry = propertyOf(object.kind(), name);
    if (!entry && needsLayout(object, name)) {
        missing("a stage", name, nullptr);
        return;
    }
    if (!entry) unknownProperty(object, name);
    if (!entry->write)
        throw HostError("the property \"" + symbols.spelling(name) + "\" of " + kindName(object.kind()) +
                        " cannot be set");
    entry->write(*this, object, value);
}

namespace {

/// The same colour as `#rgb`, or the nearest of the palette as `#paletteIndex`.
Value colourOfType(const Value& value, const std::string& type) {
    const Colour colour = value.colour();
    if (sameText(type, "rgb")) return Value::colour(colour);
    if (!sameText(type, "paletteIndex"))
        throw HostError("expected the colorType #rgb or #paletteIndex, not " + type);
    return indexedColour(
        nearestIndex(Palette::System, 8, {colour.blue(), colour.green(), colour.red(), 255}));
}

}  // namespace

/// A copy of a colour with another level of red, green or blue, another index or in another form.
Value Interpreter::withChannel(const Value& colour, SymbolId name, const Value& level) {
    static constexpr const char* channels[] = {"red", "green", "blue"};
    if (sameText(symbols.spelling(name), "colorType")) return colourOfType(colour, plain(level));
    uint32_t word = colour.colour().word;
    for (int i = 0; i < 3; ++i) {
        if (!sameText(symbols.spelling(name), channels[i])) continue;
        if (!level.isNumber())
            throw HostError("expected a number for a colour, not " + kindName(level.kind()));
        const int32_t whole = level.isInteger() ? level.integer() : rounded(level.number());
        word = (word & ~(0xFFu << i * 8)) | uint32_t(clampByte(whole)) << i * 8;
        return Value::colour(Colour(word));
    }
    if (sameText(symbols.spelling(name), "paletteIndex") && level.isInteger())
        return indexedColour(clampByte(level.integer()));
    unknownProperty(colour, name);
}

const PropertyEntry* Interpreter::propertyOf(Kind kind, SymbolId name) const {
    const Meaning* meaning = meaningOf(name);
    if (!meaning) return nullptr;
    const auto& entries = meaning->properties;
    const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                    [&](const PropertyEntry* entry) { return entry->kind == kind; });
    return found == entries.rend() ? nullptr : *found;
}

std::vector<std::string> Interpreter::propertyNames(Kind kind) const {
    std::vector<std::string> names;
    for (const auto& family : propertyFamilies())
        for (const PropertyEntry& entry : family)
            if (entry.kind == kind) names.emplace_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

void Interpreter::unknownVariable(SymbolId variable) {
    const std::string& name = symbols.spelling(variable);
    std::vector<std::string> known;
    for (const SymbolId local : frame_->code->handler->locals)
        if (local != variable) known.push_back(symbols.spelling(local));
    for (const SymbolId property : frame_->script->syntax->properties)
        known.push_back(symbols.spelling(property));
    for (const SymbolId global : frame_->script->syntax->globals) known.push_back(symbols.spelling(global));
    throw HostError("the variable \"" + name + "\" has no value yet" + didYouMean(name, known));
}

/// A line of `showGlobals`; empty for a variable without a value.
std::string Interpreter::shownVariable(SymbolId name, const Value& value) const {
    return value.isVoid() ? "" : symbols.spelling(name) + " = " + shownText(style(), value) + '\n';
}

void Interpreter::showGlobals() {
    std::string lines = "-- Global Variables --\n";
    for (const SymbolId name : globals_.names()) lines += shownVariable(name, globals_.named(name));
    writeLines(output, lines);
}

void Interpreter::showLocals() {
    std::string lines = "-- Local Variables --\n";
    for (size_t i = 0; frame_ && i < frame_->code->handler->locals.size(); ++i)
        lines += shownVariable(frame_->code->handler->locals[i], frame_->registers[i]);
    writeLines(output, lines);
}

void Interpreter::unknownProperty(const Value& object, SymbolId name) {
    const std::string& wanted = symbols.spelling(name);
    std::vector<std::string> known = propertyNames(object.kind());
    if (const auto* list = object.as<PropertyListObject>())
        for (const auto& entry : list->entries)
            if (entry.key.is(Kind::Symbol)) known.push_back(symbols.spelling(entry.key.symbol()));
    PropertyHolder* holder = object.as<InstanceObject>();
    if (!holder) holder = object.as<ScriptObject>();
    if (holder)
        for (const SymbolId property : holder->script.syntax->properties)
            known.push_back(symbols.spelling(property));
    throw HostError(kindName(object.kind()) + " has no property \"" + wanted + '"' +
                    didYouMean(wanted, known) + unsetName(object));
}

/// Ends a message about a variable without a value; empty for anything else.
std::string Interpreter::unsetName(const Value& object) const {
    if (!frame_ || !object.isUnassigned()) return "";
    const std::vector<SymbolId>& names = frame_->code->handler->locals;
    for (size_t i = 0; i < names.size(); ++i)
        if (&frame_->registers[i] == &object)
            return ": the variable \"" + symbols.spelling(names[i]) + "\" has no value yet";
    return "";
}

}  // namespace krl::player
