#include "player/cli/ArgumentCheck.h"

#include <algorithm>

#include "player/cli/MethodFacts.h"
#include "player/lingo/NearestName.h"
#include "player/lingo/Parser.h"

namespace krl::player {

namespace {

enum class Kind { Unknown, Integer, Float, String, Symbol, Void, List, PropertyList, Colour, Point, Image };

/// What a text makes, and the text.
struct Literal {
    Kind kind = Kind::Unknown;
    std::string text;
};

Literal literalOf(const Expression& expression, const SymbolTable& symbols);

Literal literalOfCall(const CallExpression& call, const SymbolTable& symbols) {
    const std::string name = folded(symbols.spelling(call.name));
    if (name == "rgb" || name == "color") return {Kind::Colour, "a colour"};
    if (name == "point") return {Kind::Point, "a point"};
    if (name == "image") return {Kind::Image, "an image"};
    return {};
}

Literal literalOf(const Expression& expression, const SymbolTable& symbols) {
    const auto literal = [&]() -> const LiteralExpression& {
        return static_cast<const LiteralExpression&>(expression);
    };
    switch (expression.kind) {
        case ExpressionKind::Integer:
            return {Kind::Integer, std::to_string(literal().integer)};
        case ExpressionKind::Float:
            return {Kind::Float, "a float"};
        case ExpressionKind::String:
            return {Kind::String, '"' + literal().text + '"'};
        case ExpressionKind::Symbol:
            return {Kind::Symbol, "#" + symbols.spelling(literal().symbol)};
        case ExpressionKind::Void:
            return {Kind::Void, "VOID"};
        case ExpressionKind::List:
            return {Kind::List, "a list"};
        case ExpressionKind::PropertyList:
            return {Kind::PropertyList, "a property list"};
        case ExpressionKind::Negation: {
            Literal inner = literalOf(*static_cast<const UnaryExpression&>(expression).operand, symbols);
            if (inner.kind == Kind::Integer) inner.text = '-' + inner.text;
            return inner.kind == Kind::Integer || inner.kind == Kind::Float ? inner : Literal{};
        }
        case ExpressionKind::Call:
            return literalOfCall(static_cast<const CallExpression&>(expression), symbols);
        default:
            return {};
    }
}

bool takes(ArgumentKind wanted, Kind given) {
    switch (wanted) {
        case ArgumentKind::Integer:
            return given == Kind::Integer;
        case ArgumentKind::Real:
            return given == Kind::Integer || given == Kind::Float;
        case ArgumentKind::Symbol:
            return given == Kind::Symbol;
        case ArgumentKind::Colour:
            return given == Kind::Colour;
        case ArgumentKind::Point:
            return given == Kind::Point;
        case ArgumentKind::ColourList:
            return given == Kind::PropertyList || given == Kind::List;
        case ArgumentKind::SecondImage:
            return given == Kind::Image;
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

/// On a command line no name has a value: most likely a symbol lacks its mark.
std::string complaintAboutName(const Argument& argument, const std::string& name) {
    return std::string(argument.name) + " is " + name + ", a name without a value, wanted is " +
           wantedText(argument) + suggestionFor(argument, '#' + name);
}

}  // namespace

std::string complaintAbout(const Argument& argument, const Expression& given, const SymbolTable& symbols) {
    const Literal literal = literalOf(given, symbols);
    if (literal.kind == Kind::Unknown) return "";
    std::string complaint =
        std::string(argument.name) + " is " + literal.text + ", wanted is " + wantedText(argument);
    if (!takes(argument.kind, literal.kind)) return complaint;
    if (argument.kind != ArgumentKind::Symbol || isChoice(argument, literal.text)) return "";
    return complaint + suggestionFor(argument, literal.text);
}

std::string complaintAbout(const Argument& argument, const std::string& text) {
    try {
        SymbolTable symbols;
        const auto script = parseExpression(std::make_shared<Source>(Source{"", text}), symbols);
        const Statement& answer = *script->handlers.front()->body.front();
        const Expression& given = *static_cast<const ExpressionStatement&>(answer).expression;
        return given.kind == ExpressionKind::Variable ? complaintAboutName(argument, text)
                                                      : complaintAbout(argument, given, symbols);
    } catch (const ScriptError&) {
        return "";
    }
}

}  // namespace krl::player
