#include "player/lingo/ExpressionParser.h"

#include <algorithm>
#include <numbers>

#include "player/lingo/Parser.h"

namespace krl::player {

/// A level of operators that bind equally and from the left.
struct ExpressionParser::Level {
    struct Entry {
        const char* text;
        Operator operation;
    };
    std::vector<Entry> entries;
};

namespace {

/// Words that end an expression, and so begin none.
constexpr const char* kJoiningWords[] = {"then",   "to",   "of",  "in",   "into",     "after",
                                         "before", "and",  "or",  "mod",  "contains", "starts",
                                         "down",   "else", "end", "with", "otherwise"};

bool isJoiningWord(const Token& token) {
    return std::any_of(std::begin(kJoiningWords), std::end(kJoiningWords),
                       [&](const char* word) { return token.isWord(word); });
}

}  // namespace

ExpressionParser::ExpressionParser(std::shared_ptr<const Source> source, SymbolTable& symbols)
    : symbols_(symbols),
      source_(std::move(source)),
      script_(std::make_unique<Script>()),
      tokens_(tokensOf(*source_)) {
    script_->source = source_;
}

bool ExpressionParser::takeMark(const char* mark) {
    if (!here().isMark(mark)) return false;
    ++at_;
    return true;
}

bool ExpressionParser::takeWord(const char* word) {
    if (!here().isWord(word)) return false;
    ++at_;
    return true;
}

void ExpressionParser::expectMark(const char* mark, const char* after) {
    if (!takeMark(mark)) fail(std::string("\"") + mark + "\" after " + after);
}

void ExpressionParser::expectWord(const char* word, const char* after) {
    if (!takeWord(word)) fail(std::string("\"") + word + "\" after " + after);
}

Token ExpressionParser::expectName(const char* what) {
    if (here().kind != TokenKind::Name) fail(what);
    return take();
}

void ExpressionParser::fail(const std::string& expected, const std::string& hint) const {
    failAt(here().place, "expected " + expected + ", not " + here().described() + hint);
}

void ExpressionParser::failAt(Place place, const std::string& message) const {
    throw source_->error(place, message);
}

void ExpressionParser::contain(Expression& whole, const ExpressionPointer& part) const {
    whole.depth = std::max(whole.depth, part->depth + 1);
    if (whole.depth > kDeepestExpression) failAt(whole.place, "the expression is nested too deeply");
}

bool ExpressionParser::beginsExpression() const {
    const Token& token = here();
    if (token.endsLine() || isJoiningWord(token)) return false;
    if (token.kind != TokenKind::Mark) return true;
    return token.isMark("(") || token.isMark("[") || token.isMark("-");
}

ExpressionPointer ExpressionParser::expression() {
    // Brackets within brackets are calls within calls here, so they are bounded as they are read.
    if (++nesting_ > kDeepestExpression) failAt(here().place, "the expression is nested too deeply");
    ExpressionPointer whole = binary(0);
    --nesting_;
    return whole;
}

ExpressionPointer ExpressionParser::binary(size_t level) {
    using enum Operator;
    static const Level levels[] = {
        {{{"and", And}, {"or", Or}}},
        {{{"=", Equal},
          {"<>", Unequal},
          {"<=", LessOrEqual},
          {">=", GreaterOrEqual},
          {"<", Less},
          {">", Greater},
          {"contains", Contains},
          {"starts", Starts}}},
        {{{"&&", ConcatenateSpaced}, {"&", Concatenate}}},
        {{{"+", Add}, {"-", Subtract}}},
        {{{"*", Multiply}, {"/", Divide}, {"mod", Modulo}}},
    };
    if (level == std::size(levels)) return unary();
    ExpressionPointer left = binary(level + 1);
    for (;;) {
        const auto& entries = levels[level].entries;
        const auto found = std::find_if(entries.begin(), entries.end(), [&](const Level::Entry& entry) {
            return here().isMark(entry.text) || here().isWord(entry.text);
        });
        if (found == entries.end()) return left;
        auto made = node<BinaryExpression>(ExpressionKind::Binary, take().place);
        made->operation = found->operation;
        made->left = std::move(left);
        made->right = binary(level + 1);
        contain(*made, made->left);
        contain(*made, made->right);
        left = std::move(made);
    }
}

ExpressionPointer ExpressionParser::unary() {
    const bool negation = here().isMark("-");
    if (!negation && !here().isWord("not")) return accessPath();
    if (++nesting_ > kDeepestExpression) failAt(here().place, "the expression is nested too deeply");
    auto made =
        node<UnaryExpression>(negation ? ExpressionKind::Negation : ExpressionKind::Not, take().place);
    made->operand = unary();
    --nesting_;
    contain(*made, made->operand);
    return made;
}

ExpressionPointer ExpressionParser::accessPath() { return postfix(primary()); }

ExpressionPointer ExpressionParser::postfix(ExpressionPointer object) {
    for (;;) {
        if (here().isMark("."))
            object = dotted(std::move(object));
        else if (here().isMark("["))
            object = indexed(std::move(object));
        else
            return object;
    }
}

ExpressionPointer ExpressionParser::dotted(ExpressionPointer object) {
    take();
    const Token name = expectName("a name after \".\"");
    ChunkKind kind;
    const bool ofChunks = here().isMark("[") || (here().isMark(".") && ahead().isWord("count"));
    if (isChunkName(name, kind) && ofChunks) return chunkByDot(kind, std::move(object), name.place);
    if (!here().isMark("(")) {
        auto made = node<PropertyExpression>(ExpressionKind::Property, name.place);
        made->object = std::move(object);
        made->name = symbols_.identifier(name.text);
        contain(*made, made->object);
        return made;
    }
    auto made = call(name);
    auto method = node<CallExpression>(ExpressionKind::MethodCall, name.place);
    method->object = std::move(object);
    method->name = made->name;
    method->arguments = std::move(made->arguments);
    method->depth = made->depth;
    contain(*method, method->object);
    return method;
}

/// `.char[2]`, `.char[2..3]` or `.char.count` after a string.
ExpressionPointer ExpressionParser::chunkByDot(ChunkKind kind, ExpressionPointer source, Place place) {
    const bool counted = takeMark(".");
    auto made = node<ChunkExpression>(counted ? ExpressionKind::ChunkCount : ExpressionKind::Chunk, place);
    made->chunk = kind;
    made->source = std::move(source);
    contain(*made, made->source);
    if (counted) {
        take();
        return made;
    }
    take();
    made->first = expression();
    contain(*made, made->first);
    if (takeMark("..")) {
        made->last = expression();
        contain(*made, made->last);
    }
    expectMark("]", "the place of the chunk");
    return made;
}

ExpressionPointer ExpressionParser::indexed(ExpressionPointer object) {
    const Place place = take().place;
    do {
        auto made = node<IndexExpression>(ExpressionKind::Index, place);
        made->object = std::move(object);
        made->index = expression();
        contain(*made, made->object);
        contain(*made, made->index);
        object = std::move(made);
    } while (takeMark(","));
    expectMark("]", "the index");
    return object;
}

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

/// A word that stands for a value, or null.
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
    // `xtra "Name"` and the like are calls that need no brackets.
    const bool reference = name.isWord("xtra") || name.isWord("script") || name.isWord("member");
    if (reference && (here().kind == TokenKind::String || here().kind == TokenKind::Integer)) {
        auto made = node<CallExpression>(ExpressionKind::Call, name.place);
        made->name = symbols_.identifier(name.text);
        made->arguments.push_back(literal());
        contain(*made, made->arguments.back());
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

/// A name before a colon is a symbol.
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

/// These are names of variables too: a chunk goes on with a number, a name or a bracket.
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
