#include "player/cli/ArgumentCheck.h"

#include <algorithm>
#include <optional>

#include "catalogue/Letters.h"
#include "catalogue/Notation.h"
#include "player/cli/MethodFacts.h"
#include "player/lingo/NearestName.h"
#include "player/lingo/Parser.h"

namespace krl::player {

namespace {

/// The type of an expression's value, as far as its source shows, and a description for messages.
struct Literal {
    std::optional<ValueKind> kind;
    std::string text;
};

Literal literalOf(const Expression& expression, const SymbolTable& symbols);

Literal literalOfCall(const CallExpression& call, const SymbolTable& symbols) {
    const std::string name = folded(symbols.spelling(call.name));
    if (name == "rgb" || name == "color") return {ValueKind::Colour, "a colour"};
    if (name == "point") return {ValueKind::Point, "a point"};
    if (name == "image") return {ValueKind::Picture, "a picture"};
    return {};
}

Literal literalOf(const Expression& expression, const SymbolTable& symbols) {
    const auto literal = [&]() -> const LiteralExpression& {
        return static_cast<const LiteralExpression&>(expression);
    };
    switch (expression.kind) {
        case ExpressionKind::Integer:
            return {ValueKind::Integer, std::to_string(literal().integer)};
        case ExpressionKind::Float:
            return {ValueKind::Real, "a float"};
        case ExpressionKind::String:
            return {ValueKind::Text, '"' + literal().text + '"'};
        case ExpressionKind::Symbol:
            return {ValueKind::Symbol, "#" + symbols.spelling(literal().symbol)};
        case ExpressionKind::Void:
            return {ValueKind::Void, "VOID"};
        case ExpressionKind::List:
            return {ValueKind::List, "a list"};
        case ExpressionKind::PropertyList:
            return {ValueKind::PropertyList, "a property list"};
        case ExpressionKind::Negation: {
            Literal inner = literalOf(*static_cast<const UnaryExpression&>(expression).operand, symbols);
            if (inner.kind == ValueKind::Integer) inner.text = '-' + inner.text;
            return inner.kind == ValueKind::Integer || inner.kind == ValueKind::Real ? inner : Literal{};
        }
        case ExpressionKind::Call:
            return literalOfCall(static_cast<const CallExpression&>(expression), symbols);
        default:
            return {};
    }
}

bool takes(ArgumentKind expected, ValueKind given) {
    switch (expected) {
        case ArgumentKind::Integer:
            return given == ValueKind::Integer;
        case ArgumentKind::Real:
            return given == ValueKind::Integer || given == ValueKind::Real;
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

std::string suggestionFor(const Argument& argument, const std::string& symbol) {
    std::vector<std::string> names;
    for (const SymbolChoice& choice : argument.choices) names.push_back(std::string("#") + choice.name);
    return didYouMean(symbol, names);
}

bool isChoice(const Argument& argument, const std::string& symbol) {
    return std::any_of(argument.choices.begin(), argument.choices.end(), [&](const SymbolChoice& choice) {
        return folded(choice.name) == folded(symbol.substr(1));
    });
}

/// With an article, as messages name a type; for a symbol its choices.
std::string expectedType(const Argument& argument) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return "an integer";
        case ArgumentKind::Real:
            return "a number";
        case ArgumentKind::ColourList:
            return "a " + expectedText(argument);
        case ArgumentKind::Colour:
            return "a colour";
        case ArgumentKind::Point:
            return "a point";
        case ArgumentKind::SecondImage:
            return "an image";
        case ArgumentKind::Symbol:
        case ArgumentKind::Value:
            break;
    }
    return expectedText(argument);
}

std::string complaint(const Argument& argument, const std::string& got) {
    return std::string(argument.name) + ": expected " + expectedType(argument) + ", got " + got;
}

/// Checks a value of known type.
std::string complaintAbout(const Argument& argument, ValueKind kind, const std::string& text) {
    if (!takes(argument.kind, kind)) return complaint(argument, text);
    const bool refused = argument.kind == ArgumentKind::Symbol && argument.unknown.message;
    if (!refused || isChoice(argument, text)) return "";
    return complaint(argument, text) + suggestionFor(argument, text);
}

bool isName(const std::string& text) {
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char letter) { return std::isalnum(letter) || letter == '_'; });
}

bool isNumber(const krl::Value& value) {
    return value.kind() == ValueKind::Integer || value.kind() == ValueKind::Real;
}

bool isColourList(const krl::Value& value) {
    if (const auto* plain = value.as<ListValue>()) return plain->empty();
    const auto* entries = value.as<PropertyListValue>();
    return entries && std::all_of(entries->begin(), entries->end(), [](const auto& entry) {
               return isNumber(entry.first) && entry.second.kind() == ValueKind::Colour;
           });
}

std::string wordsFor(const krl::Value& value) {
    switch (value.kind()) {
        case ValueKind::Integer:
        case ValueKind::Symbol:
        case ValueKind::Text:
            return writeNotation(value);
        case ValueKind::Void:
            return "nothing";
        default:
            return std::string("a ") + (value.kind() == ValueKind::Real ? "float" : kindName(value.kind()));
    }
}

}  // namespace

std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols) {
    const Literal literal = literalOf(given, symbols);
    return literal.kind ? complaintAbout(argument, *literal.kind, literal.text) : "";
}

std::string complaintAbout(const Argument& argument, const krl::Value& given, const std::string& text) {
    // Names have no values on a command line: most likely the `#` of a symbol is missing.
    if (given.kind() == ValueKind::Void && isName(text) && !sameLetters(text, "VOID"))
        return complaint(argument, "the undefined name " + text) + suggestionFor(argument, '#' + text);
    if (argument.kind == ArgumentKind::ColourList && !isColourList(given))
        return complaint(argument, wordsFor(given));
    return complaintAbout(argument, given.kind(), wordsFor(given));
}

}  // namespace krl::player
