#include "catalogue/Arguments.h"

#include <algorithm>

#include "catalogue/Letters.h"
#include "catalogue/Notation.h"

namespace krl {

namespace {

[[noreturn]] void fail(ArgumentFault fault, const Method& method, const std::string& message) {
    throw ArgumentError(fault, method.shortName() + ": " + message);
}

std::string counted(size_t count) {
    return count == 0 ? "no arguments" : count == 1 ? "1 argument" : std::to_string(count) + " arguments";
}

size_t placeOf(const Method& method, std::string_view name) {
    const std::vector<Argument>& declared = method.arguments();
    const auto named = [&](const Argument& argument) { return sameLetters(argument.name, name); };
    const auto found = std::find_if(declared.begin(), declared.end(), named);
    if (found == declared.end())
        fail(ArgumentFault::NoSuchArgument, method, "no argument is called " + std::string(name));
    return static_cast<size_t>(found - declared.begin());
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

bool isNumber(const Value& value) { return value.as<int32_t>() || value.as<double>(); }

bool isColourList(const Value& value, ListKeys keys) {
    if (const auto* list = value.as<ListValue>()) return list->empty();
    const auto* properties = value.as<PropertyListValue>();
    return properties && std::all_of(properties->begin(), properties->end(), [&](const auto& entry) {
               return (keys.real ? isNumber(entry.first) : entry.first.template as<int32_t>() != nullptr) &&
                      entry.second.template as<Colour>();
           });
}

bool isOfKind(const Argument& argument, const Value& value) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return value.as<int32_t>();
        case ArgumentKind::Real:
            return isNumber(value);
        case ArgumentKind::Symbol:
            return value.as<Symbol>();
        case ArgumentKind::Colour:
            return value.as<Colour>();
        case ArgumentKind::Point:
            return value.as<Point>();
        case ArgumentKind::ColourList:
            return isColourList(value, argument.listKeys);
        case ArgumentKind::SecondImage:
            return value.as<Picture>();
        case ArgumentKind::Value:
            return !holdsReference(value);
    }
    return false;
}

const char* expectedKind(ArgumentKind kind) {
    switch (kind) {
        case ArgumentKind::Integer:
            return "an integer";
        case ArgumentKind::Real:
            return "a number";
        case ArgumentKind::Symbol:
            return "a symbol";
        case ArgumentKind::Colour:
            return "a colour";
        case ArgumentKind::Point:
            return "a point";
        case ArgumentKind::ColourList:
            return "a property list of colours under numbers";
        case ArgumentKind::SecondImage:
            return "a picture";
        case ArgumentKind::Value:
            return "pictures in memory";
    }
    return "";
}

bool isChoice(const Argument& argument, const Symbol& symbol) {
    return std::any_of(argument.choices.begin(), argument.choices.end(),
                       [&](const SymbolChoice& choice) { return sameLetters(choice.name, symbol.name); });
}

std::string choicesOf(const Argument& argument) {
    std::string text;
    for (const SymbolChoice& choice : argument.choices)
        text += (text.empty() ? "#" : ", #") + std::string(choice.name);
    return text;
}

Value standIn(const Method& method, const Argument& argument, const ExampleSetting& setting) {
    Value example = exampleValue(argument, setting);
    if (holdsReference(example))
        fail(ArgumentFault::Missing, method, std::string(argument.name) + ": expected a value, got none");
    return example;
}

}  // namespace

std::vector<Value> arrangeArguments(const Method& method, std::span<const GivenArgument> given,
                                    const ExampleSetting& setting) {
    const std::vector<Argument>& declared = method.arguments();
    std::vector<const GivenArgument*> places(declared.size());
    size_t next = 0;
    for (const GivenArgument& argument : given) {
        const size_t place = argument.name.empty() ? next++ : placeOf(method, argument.name);
        if (place >= declared.size())
            fail(ArgumentFault::TooMany, method, "expected " + counted(declared.size()) + ", got more");
        if (places[place])
            fail(ArgumentFault::GivenTwice, method, std::string(declared[place].name) + " is given twice");
        places[place] = &argument;
    }
    std::vector<Value> values;
    for (size_t i = 0; i < declared.size(); ++i) {
        const bool isGiven = places[i] && places[i]->value;
        values.push_back(isGiven ? *places[i]->value : standIn(method, declared[i], setting));
    }
    return values;
}

void checkArguments(const Method& method, const std::vector<Value>& arguments) {
    for (size_t i = 0; i < method.arguments().size(); ++i) {
        const Argument& declared = method.arguments()[i];
        const Value given = i < arguments.size() ? arguments[i] : Value();
        const std::string name = declared.name;
        if (!isOfKind(declared, given))
            fail(ArgumentFault::WrongKind, method,
                 name + ": expected " + expectedKind(declared.kind) + ", got " + writeNotation(given));
        if (declared.kind == ArgumentKind::Symbol && declared.unknown.message &&
            !isChoice(declared, *given.as<Symbol>()))
            fail(ArgumentFault::NoSuchChoice, method,
                 name + ": expected " + choicesOf(declared) + ", got " + writeNotation(given));
    }
}

}  // namespace krl
