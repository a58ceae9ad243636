#include "player/cli/ArgumentCheck.h"

#include <algorithm>
#include <optional>

#include "catalogue/Arguments.h"
#include "catalogue/Letters.h"
#include "catalogue/NearestName.h"
#include "catalogue/Notation.h"
#include "player/cli/MethodFacts.h"
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
            return {ValueKind::Real, realNotation(literal().real)};
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
            if (inner.kind != ValueKind::Integer && inner.kind != ValueKind::Real) return {};
            return {inner.kind, '-' + inner.text};
        }
        case ExpressionKind::Call:
            return literalOfCall(static_cast<const CallExpression&>(expression), symbols);
        default:
            return {};
    }
}

bool isName(const std::string& text) {
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char letter) { return std::isalnum(letter) || letter == '_'; });
}

}  // namespace

std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols) {
    const Literal literal = literalOf(given, symbols);
    return literal.kind ? krl::complaintAbout(argument, *literal.kind, literal.text) : "";
}

std::string complaintAbout(const Argument& argument, const krl::Value& given, const std::string& text) {
    // Names have no values on a command line: most likely the `#` of a symbol is missing.
    if (given.kind() == ValueKind::Void && isName(text) && !sameLetters(text, "VOID"))
        return wrongKindText(argument, "the undefined name " + text) +
               didYouMean('#' + text, symbolsOf(argument));
    return krl::complaintAbout(argument, given);
}

}  // namespace krl::player
