#include <numbers>

#include "player/lingo/ExpressionParser.h"
#include "player/lingo/Parser.h"

/// The operands of operators: literals, names, calls and lists.
namespace krl::player {

ExpressionPointer ExpressionParser::primary() {
    switch (here().kind) {
        case TokenKind::Integer:
        case TokenKind::Float:
        case TokenKind::String:
        case TokenKind::Symbol:
            return literal();
        case TokenKind::Name:
            return named();
        default:
            break;
    }
    if (here().isMark("(")) return bracketed();
    if (here().isMark("[")) return list("]");
    if (here().isMark("{")) return list("}");
    fail("an expression");
}

ExpressionPointer ExpressionParser::bracketed() {
    take();
    ExpressionPointer inner = expression();
    expectMark(")", "the expression");
    return inner;
}

ExpressionPointer ExpressionParser::literal() {
    const Token& token = take();
    if (token.kind == TokenKind::String) return text(token.text, token.place);
    const ExpressionKind kind = token.kind == TokenKind::Integer ? ExpressionKind::Integer
                                : token.kind == TokenKind::Float ? ExpressionKind::Float
                                                                 : ExpressionKind::Symbol;
    auto made = node<LiteralExpression>(kind, token.place);
    made->integer = token.integer;
    made->real = token.real;
    made->text = token.text;
    if (kind == ExpressionKind::Symbol) made->symbol = symbols_.symbol(token.text);
    return made;
}

ExpressionPointer ExpressionParser::text(std::string characters, Place place) {
    auto made = node<LiteralExpression>(ExpressionKind::String, place);
    made->text = std::move(characters);
    return made;
}

/// The value of a constant such as `empty` or `true`, or null.
ExpressionPointer ExpressionParser::constant() {
    struct Entry {
        const char* name;
        const char* text;
    };
    static constexpr Entry texts[] = {{"empty", ""},  {"quote", "\""}, {"return", "\r"},   {"tab", "\t"},
                                      {"space", " "}, {"enter", "\3"}, {"backspace", "\b"}};
    if (ahead().isMark("(")) return nullptr;
    for (const Entry& entry : texts)
        if (here().isWord(entry.name)) return text(entry.text, take().place);
    if (here().isWord("void")) return node<LiteralExpression>(ExpressionKind::Void, take().place);
    if (here().isWord("pi")) {
        auto made = node<LiteralExpression>(ExpressionKind::Float, take().place);
        made->real = std::numbers::pi;
        return made;
    }
    for (const bool truth : {false, true})
        if (here().isWord(truth ? "true" : "false")) {
            auto made = node<LiteralExpression>(ExpressionKind::Integer, take().place);
            made->integer = truth;
            return made;
        }
    return nullptr;
}

ExpressionPointer ExpressionParser::named() {
    if (isJoiningWord(here())) fail("an expression");
    if (here().isWord("the")) return the();
    ChunkKind kind;
    if (beginsChunk(kind)) return chunk(kind);
    if (ExpressionPointer known = constant()) return known;
    if (ExpressionPointer found = referenced()) return found;
    const Token& name = take();
    if (here().isMark("(")) return call(name);
    // The objects of the player, such as `_movie`.
    if (name.isAnyWord({"_movie", "_player", "_system", "_global", "_key", "_mouse", "_sound"})) {
        auto made = node<CallExpression>(ExpressionKind::Call, name.place);
        made->name = symbols_.identifier(name.text);
        return made;
    }
    return variable(name);
}

std::unique_ptr<VariableExpression> ExpressionParser::variable(const Token& name) {
    auto made = node<VariableExpression>(ExpressionKind::Variable, name.place);
    made->name = symbols_.identifier(name.text);
    variables_.push_back(made.get());
    return made;
}

std::unique_ptr<CallExpression> ExpressionParser::call(const Token& name) {
    auto made = node<CallExpression>(ExpressionKind::Call, name.place);
    made->name = symbols_.identifier(name.text);
    expectMark("(", "the name");
    made->arguments = expressionsUpTo(")");
    for (const ExpressionPointer& argument : made->arguments) contain(*made, argument);
    return made;
}

std::vector<ExpressionPointer> ExpressionParser::expressionsUpTo(const char* mark) {
    std::vector<ExpressionPointer> found;
    if (takeMark(mark)) return found;
    do found.push_back(expression());
    while (takeMark(","));
    if (!takeMark(mark)) fail(std::string("\",\" or \"") + mark + '"');
    return found;
}

/// `[1, 2]`, `[#a: 1]`, `[:]`, or the same in braces.
ExpressionPointer ExpressionParser::list(const char* closing) {
    const Place place = take().place;
    const bool braces = *closing == '}';
    if (takeMark(":")) {
        expectMark(closing, braces ? "\"{:\"" : "\"[:\"");
        return node<ListExpression>(ExpressionKind::PropertyList, place);
    }
    auto made = node<ListExpression>(ExpressionKind::List, place);
    if (takeMark(closing))
        return braces ? node<ListExpression>(ExpressionKind::PropertyList, place) : std::move(made);
    ExpressionPointer first = propertyKey();
    if (here().isMark(":"))
        return propertyList(node<ListExpression>(ExpressionKind::PropertyList, place), std::move(first),
                            closing);
    made->items.push_back(std::move(first));
    while (takeMark(",")) made->items.push_back(expression());
    if (!takeMark(closing)) fail(std::string("\",\" or \"") + closing + "\" in the list");
    for (const ExpressionPointer& item : made->items) contain(*made, item);
    return made;
}

ExpressionPointer ExpressionParser::propertyList(std::unique_ptr<ListExpression> made,
                                                 ExpressionPointer firstKey, const char* closing) {
    made->keys.push_back(std::move(firstKey));
    for (;;) {
        expectMark(":", "the property");
        made->items.push_back(expression());
        contain(*made, made->keys.back());
        contain(*made, made->items.back());
        if (!takeMark(",")) break;
        made->keys.push_back(propertyKey());
    }
    if (!takeMark(closing)) fail(std::string("\",\" or \"") + closing + "\" in the property list");
    return made;
}

/// A name before a colon counts as a symbol.
ExpressionPointer ExpressionParser::propertyKey() {
    if (here().kind != TokenKind::Name || !ahead().isMark(":")) return expression();
    const Token& name = take();
    auto made = node<LiteralExpression>(ExpressionKind::Symbol, name.place);
    made->text = name.text;
    made->symbol = symbols_.symbol(name.text);
    return made;
}

}  // namespace krl::player
