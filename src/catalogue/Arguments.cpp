#include "catalogue/Arguments.h"

#include <algorithm>

#include "catalogue/Letters.h"
#include "catalogue/NearestName.h"
#include "catalogue/Notation.h"

namespace krl {

namespace {

[[noreturn]] void fail(ArgumentFault fault, const Method& method, const std::string& message) {
    throw ArgumentError(fault, method.shortName() + message);
}

size_t placeOf(const Method& method, std::string_view name) {
    const std::vector<Argument>& declared = method.arguments();
    const auto named = [&](const Argument& argument) { return sameLetters(argument.name, name); };
    const auto found = std::find_if(declared.begin(), declared.end(), named);
    if (found != declared.end()) return static_cast<size_t>(found - declared.begin());
    std::vector<std::string> names;
    for (const Argument& argument : declared) names.push_back(argument.name);
    fail(ArgumentFault::NoSuchArgument, method,
         " has no argument " + std::string(name) + didYouMean(name, names));
}

/// Whether a picture that is yet to be found is `value` or within it.
bool holdsReference(const Value& value) {
    if (value.as<PictureReference>()) return true;
    if (const auto* list = value.as<ListValue>())
        return std::any_of(list->begin(), list->end(), holdsReference);
    const auto* properties = value.as<PropertyListValue>();
    return properties && std::any_of(properties->begin(), properties->end(),
                                     [](const auto& entry) { return holdsReference(entry.second); });
}

bool isNumber(ValueKind kind) { return kind == ValueKind::Integer || kind == ValueKind::Real; }

bool isColourList(const Value& value, ListKeys keys) {
    if (const auto* list = value.as<ListValue>()) return list->empty();
    const auto* properties = value.as<PropertyListValue>();
    return properties && std::all_of(properties->begin(), properties->end(), [&](const auto& entry) {
               const ValueKind key = entry.first.kind();
               return (keys.real ? isNumber(key) : key == ValueKind::Integer) &&
                      entry.second.kind() == ValueKind::Colour;
           });
}

bool takes(ArgumentKind expected, ValueKind given) {
    switch (expected) {
        case ArgumentKind::Integer:
            return given == ValueKind::Integer;
        case ArgumentKind::Real:
            return isNumber(given);
        case ArgumentKind::Symbol:
            return given == ValueKind::Symbol;
        case ArgumentKind::Colour:
            return given == ValueKind::Colour;
        case ArgumentKind::Point:
            return given == ValueKind::Point;
        case ArgumentKind::ColourList:
            return given == ValueKind::PropertyList || given == ValueKind::List;
        case ArgumentKind::SecondImage:
            return given == ValueKind::Picture || given == ValueKind::PictureReference;
        case ArgumentKind::Value:
            return true;
    }
    return true;
}

/// With an article, as messages name a kind; for a symbol its choices.
std::string expectedKind(const Argument& argument) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return "an integer";
        case ArgumentKind::Real:
            return "a number";
        case ArgumentKind::Symbol:
            return choicesText(argument);
        case ArgumentKind::Colour:
            return "a colour";
        case ArgumentKind::Point:
            return "a point";
        case ArgumentKind::ColourList:
            return "a property list of colours keyed by number";
        case ArgumentKind::SecondImage:
            return "a picture";
        case ArgumentKind::Value:
            return "pictures in memory";
    }
    return "";
}

/// A value as messages show it: what is short as it is written, the rest by its kind.
std::string shownValue(const Value& value) {
    switch (value.kind()) {
        case ValueKind::Void:
            return "nothing";
        case ValueKind::List:
        case ValueKind::PropertyList:
        case ValueKind::Picture:
            return std::string("a ") + kindName(value.kind());
        default:
            return writeNotation(value);
    }
}

bool isChoice(const Argument& argument, std::string_view name) {
    return std::any_of(argument.choices.begin(), argument.choices.end(),
                       [&](const SymbolChoice& choice) { return sameLetters(choice.name, name); });
}

bool refusesSymbol(const Argument& argument, std::string_view name) {
    return argument.kind == ArgumentKind::Symbol && argument.unknown.message && !isChoice(argument, name);
}

}  // namespace

std::string outlineOf(const Method& method) {
    std::string text = method.shortName() + "(";
    for (const Argument& argument : method.arguments()) {
        if (text.back() != '(') text += ", ";
        text += argument.name;
    }
    return text + ")";
}

std::string countComplaint(const Method& method, size_t given) {
    const size_t expected = method.arguments().size();
    if (given == expected) return "";
    return outlineOf(method) + " takes " + std::to_string(expected) +
           (expected == 1 ? " argument, " : " arguments, ") + std::to_string(given) +
           (given == 1 ? " was given" : " were given");
}

std::vector<std::string> symbolsOf(const Argument& argument) {
    std::vector<std::string> symbols;
    for (const SymbolChoice& choice : argument.choices) symbols.push_back(std::string("#") + choice.name);
    return symbols;
}

std::string choicesText(const Argument& argument) {
    const std::vector<std::string> symbols = symbolsOf(argument);
    std::string text;
    for (size_t i = 0; i < symbols.size(); ++i)
        text += (i == 0 ? "" : i + 1 == symbols.size() ? " or " : ", ") + symbols[i];
    return text;
}

std::string wrongKindText(const Argument& argument, const std::string& shown) {
    return std::string(argument.name) + ": expected " + expectedKind(argument) + ", got " + shown;
}

std::string complaintAbout(const Argument& argument, ValueKind kind, const std::string& shown) {
    if (!takes(argument.kind, kind)) return wrongKindText(argument, shown);
    if (kind != ValueKind::Symbol || !refusesSymbol(argument, shown.substr(1))) return "";
    return wrongKindText(argument, shown) + didYouMean(shown, symbolsOf(argument));
}

std::string complaintAbout(const Argument& argument, const Value& value) {
    const std::string shown = shownValue(value);
    if (argument.kind == ArgumentKind::ColourList && !isColourList(value, argument.listKeys))
        return wrongKindText(argument, shown);
    return complaintAbout(argument, value.kind(), shown);
}

Value standInFor(const Method& method, const Argument& argument, const ExampleSetting& setting) {
    Value example = exampleValue(argument, setting);
    if (!holdsReference(example)) return example;
    const std::string name = argument.name;
    fail(ArgumentFault::Missing, method,
         " needs " + name + ", such as " + name + ": " + exampleText(argument, setting));
}

std::vector<std::optional<size_t>> placeArguments(const Method& method,
                                                  std::span<const std::string_view> names) {
    const std::vector<Argument>& declared = method.arguments();
    std::vector<std::optional<size_t>> places(declared.size());
    size_t next = 0;
    for (size_t i = 0; i < names.size(); ++i) {
        const size_t place = names[i].empty() ? next++ : placeOf(method, names[i]);
        if (place >= declared.size())
            throw ArgumentError(ArgumentFault::TooMany, countComplaint(method, names.size()));
        if (places[place])
            fail(ArgumentFault::GivenTwice, method,
                 ": " + std::string(declared[place].name) + " is given twice");
        places[place] = i;
    }
    return places;
}

std::vector<Value> arrangeArguments(const Method& method, std::span<const GivenArgument> given,
                                    const ExampleSetting& setting) {
    std::vector<std::string_view> names;
    for (const GivenArgument& argument : given) names.push_back(argument.name);
    const std::vector<std::optional<size_t>> places = placeArguments(method, names);
    std::vector<Value> values;
    for (size_t i = 0; i < places.size(); ++i) {
        const Value* value = places[i] ? given[*places[i]].value : nullptr;
        values.push_back(value ? *value : standInFor(method, method.arguments()[i], setting));
    }
    return values;
}

void checkArguments(const Method& method, const std::vector<Value>& arguments) {
    for (size_t i = 0; i < method.arguments().size(); ++i) {
        const Argument& declared = method.arguments()[i];
        const Value given = i < arguments.size() ? arguments[i] : Value();
        std::string complaint = complaintAbout(declared, given);
        if (complaint.empty() && holdsReference(given))
            complaint = wrongKindText(declared, writeNotation(given));
        if (complaint.empty()) continue;
        const auto* symbol = given.as<Symbol>();
        const bool refused = symbol && refusesSymbol(declared, symbol->name);
        fail(refused ? ArgumentFault::NoSuchChoice : ArgumentFault::WrongKind, method, ": " + complaint);
    }
}

}  // namespace krl
