#include <numbers>

#include "player/lingo/ExpressionParser.h"
#include "player/lingo/Parser.h"

/// The operands of operators: literals, names, calls, lists, chunks and `the`.
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
    if (here().isMark("[")) return list(take().place);
    fail("an expression");
}

ExpressionPointer ExpressionParser::bracketed() {
    take();
    ExpressionPointer inner = expression();
    expectMark(")", "the expression");
    return inner;
}

ExpressionPointer ExpressionParser::literal() {
    const Token token = take();
    if (token.kind == TokenKind::String) return text(token.text, token.place);
    const ExpressionKind kind = token.kind == TokenKind::Integer ? ExpressionKind::Integer
                                : token.kind == TokenKind::Float ? ExpressionKind::Float
                                                                 : ExpressionKind::Symbol;
    auto made = node<LiteralExpression>(kind, token.place);
    made->integer = token.integer;
    made->real = token.real;
    made->text = token.text;
    if (kind == ExpressionKind::Symbol) made->symbol = symbols_.symbol(token.text);
    if (kind == ExpressionKind::Float) {
        made->index = static_cast<int>(script_->literals.size());
        script_->literals.push_back(made.get());
    }
    return made;
}

ExpressionPointer ExpressionParser::text(std::string characters, Place place) {
    auto made = node<LiteralExpression>(ExpressionKind::String, place);
    made->text = std::move(characters);
    made->index = static_cast<int>(script_->literals.size());
    script_->literals.push_back(made.get());
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
        made->index = static_cast<int>(script_->literals.size());
        script_->literals.push_back(made.get());
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
    const Token name = take();
    if (here().isMark("(")) return call(name);
    if ((name.isWord("xtra") || name.isWord("script") || name.isWord("member")) && beginsReference())
        return reference(name);
    return variable(name);
}

/// Whether a reference follows `member` and the like without parentheses.
bool ExpressionParser::beginsReference() const {
    const Token& next = here();
    return next.kind == TokenKind::String || next.kind == TokenKind::Integer ||
           (next.kind == TokenKind::Name && !isJoiningWord(next));
}

/// `xtra "Name"`, `member name of castLib 2`: calls without parentheses.
ExpressionPointer ExpressionParser::reference(const Token& name) {
    auto made = node<CallExpression>(ExpressionKind::Call, name.place);
    made->name = symbols_.identifier(name.text);
    const auto argument = [&] {
        made->arguments.push_back(here().kind == TokenKind::Name ? variable(take()) : literal());
        contain(*made, made->arguments.back());
    };
    argument();
    if (here().isWord("of") && ahead().isWord("castlib")) {
        take();
        take();
        if (!beginsReference()) fail("the name or number of a cast");
        argument();
    }
    return made;
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

ExpressionPointer ExpressionParser::list(Place place) {
    if (here().isMark(":")) {
        take();
        expectMark("]", "\"[:\"");
        return node<ListExpression>(ExpressionKind::PropertyList, place);
    }
    auto made = node<ListExpression>(ExpressionKind::List, place);
    if (takeMark("]")) return made;
    ExpressionPointer first = propertyKey();
    if (here().isMark(":"))
        return propertyList(place, node<ListExpression>(ExpressionKind::PropertyList, place),
                            std::move(first));
    made->items.push_back(std::move(first));
    while (takeMark(",")) made->items.push_back(expression());
    if (!takeMark("]")) fail("\",\" or \"]\" in the list");
    for (const ExpressionPointer& item : made->items) contain(*made, item);
    return made;
}

ExpressionPointer ExpressionParser::propertyList(Place, std::unique_ptr<ListExpression> made,
                                                 ExpressionPointer firstKey) {
    made->keys.push_back(std::move(firstKey));
    for (;;) {
        expectMark(":", "the property");
        made->items.push_back(expression());
        contain(*made, made->keys.back());
        contain(*made, made->items.back());
        if (!takeMark(",")) break;
        made->keys.push_back(propertyKey());
    }
    if (!takeMark("]")) fail("\",\" or \"]\" in the property list");
    return made;
}

/// A name before a colon counts as a symbol.
ExpressionPointer ExpressionParser::propertyKey() {
    if (here().kind != TokenKind::Name || !ahead().isMark(":")) return expression();
    const Token name = take();
    auto made = node<LiteralExpression>(ExpressionKind::Symbol, name.place);
    made->text = name.text;
    made->symbol = symbols_.symbol(name.text);
    return made;
}

bool ExpressionParser::isChunkName(const Token& token, ChunkKind& kind) {
    static constexpr const char* names[] = {"char", "word", "item", "line"};
    for (int i = 0; i < 4; ++i)
        if (token.isWord(names[i])) {
            kind = static_cast<ChunkKind>(i);
            return true;
        }
    return false;
}

/// These words can be variables too; in a chunk, a number, a name or a bracket follows.
bool ExpressionParser::beginsChunk(ChunkKind& kind) const {
    if (!isChunkName(here(), kind)) return false;
    const Token& next = ahead();
    if (next.kind == TokenKind::Integer) return true;
    return next.isMark("(") || (next.kind == TokenKind::Name && !isJoiningWord(next));
}

ExpressionPointer ExpressionParser::chunk(ChunkKind kind) {
    if (++nesting_ > kDeepestExpression) failAt(here().place, "the expression is nested too deeply");
    auto made = node<ChunkExpression>(ExpressionKind::Chunk, take().place);
    made->chunk = kind;
    made->first = expression();
    if (takeWord("to")) made->last = expression();
    expectIn();
    made->source = accessPath();
    --nesting_;
    for (const ExpressionPointer* part : {&made->first, &made->last, &made->source})
        if (*part) contain(*made, *part);
    return made;
}

void ExpressionParser::expectIn() {
    if (!takeWord("of") && !takeWord("in")) fail("\"of\"");
}

ExpressionPointer ExpressionParser::the() {
    if (++nesting_ > kDeepestExpression) failAt(here().place, "the expression is nested too deeply");
    const Place place = take().place;
    Token name = expectName("the name of a property after \"the\"");
    const bool form = name.isWord("long") || name.isWord("short") || name.isWord("abbreviated");
    if (form && (here().isWord("time") || here().isWord("date"))) name = take();
    ChunkKind kind;
    const bool last = name.isWord("last") && isChunkName(here(), kind);
    const bool number = name.isWord("number") && here().isWord("of");
    if (last || number) {
        if (number) take();
        Token plural = take();
        if (number && !plural.text.empty()) plural.text.pop_back();
        if (!isChunkName(plural, kind))
            failAt(plural.place, "expected chars, words, items or lines to count");
        auto made = node<ChunkExpression>(last ? ExpressionKind::Chunk : ExpressionKind::ChunkCount, place);
        made->chunk = kind;
        expectIn();
        made->source = accessPath();
        contain(*made, made->source);
        --nesting_;
        return made;
    }
    const bool ofObject = takeWord("of");
    auto made = node<PropertyExpression>(ofObject ? ExpressionKind::Property : ExpressionKind::SystemProperty,
                                         name.place);
    made->name = symbols_.identifier(name.text);
    if (ofObject) {
        made->object = accessPath();
        contain(*made, made->object);
    }
    --nesting_;
    return made;
}

}  // namespace krl::player
