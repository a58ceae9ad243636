#include "player/lingo/ExpressionParser.h"

#include <algorithm>

#include "player/lingo/Parser.h"

/// Tokens, operators and access to parts: expressions down to their primaries.
namespace krl::player {

namespace {

/// All are left-associative; the higher its level, the closer it binds.
struct BinaryOperator {
    std::string_view text;
    Operator operation;
    int level;
};

const BinaryOperator* binaryOperator(const Token& token) {
    using enum Operator;
    static constexpr BinaryOperator marks[] = {
        {"=", Equal, 1}, {"<>", Unequal, 1}, {"<=", LessOrEqual, 1},       {">=", GreaterOrEqual, 1},
        {"<", Less, 1},  {">", Greater, 1},  {"&&", ConcatenateSpaced, 2}, {"&", Concatenate, 2},
        {"+", Add, 3},   {"-", Subtract, 3}, {"*", Multiply, 4},           {"/", Divide, 4},
    };
    static constexpr BinaryOperator words[] = {
        {"and", And, 0},
        {"or", Or, 0},
        {"contains", Contains, 1},
        {"starts", Starts, 1},
        {"intersects", Intersects, 1},
        {"within", Within, 1},
        {"mod", Modulo, 4},
    };
    if (token.kind == TokenKind::Mark) {
        for (const BinaryOperator& entry : marks)
            if (token.text == entry.text) return &entry;
    } else if (token.kind == TokenKind::Name) {
        for (const BinaryOperator& entry : words)
            if (token.isWord(entry.text)) return &entry;
    }
    return nullptr;
}

}  // namespace

ExpressionParser::ExpressionParser(std::shared_ptr<const Source> source, SymbolTable& symbols)
    : symbols_(symbols),
      source_(std::move(source)),
      script_(std::make_unique<Script>()),
      tokens_(tokensOf(*source_)) {
    script_->source = source_;
}

bool ExpressionParser::takeMark(std::string_view mark) {
    if (!here().isMark(mark)) return false;
    ++at_;
    return true;
}

bool ExpressionParser::takeWord(std::string_view word) {
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

const Token& ExpressionParser::expectName(const char* what) {
    if (here().kind != TokenKind::Name) fail(what);
    return take();
}

void ExpressionParser::fail(const std::string& expected, const std::string& hint) const {
    if (here().kind == TokenKind::Wrong) failAt(here().place, here().text);
    failAt(here().place, "expected " + expected + ", not " + here().described() + hint + foreignHint());
}

/// Ends the message about what other languages write or where a line does not go on; else empty.
std::string ExpressionParser::foreignHint() const {
    if (here().kind == TokenKind::LineEnd && breaksLine()) return "; a line that goes on ends with \"\\\"";
    if (here().kind != TokenKind::Mark) return "";
    struct Entry {
        const char *first, *second, *instead;
    };
    static constexpr Entry entries[] = {
        {"=", "=", "equality is written ="},    {"+", "=", "write x = x + 1"},
        {"-", "=", "write x = x - 1"},          {"*", "=", "write x = x * 2"},
        {"/", "=", "write x = x / 2"},          {"+", "+", "write x = x + 1"},
        {"/", "/", "a comment begins with --"}, {"/", "*", "a comment begins with --"},
    };
    const Token& before = at_ > 0 ? tokens_[at_ - 1] : here();
    for (const Entry& entry : entries) {
        const bool begins =
            here().isMark(entry.first) && ahead().isMark(entry.second) && ahead().begin == here().end;
        const bool ends =
            before.isMark(entry.first) && here().isMark(entry.second) && before.end == here().begin;
        if (begins || ends) return std::string("; ") + entry.instead;
    }
    return "";
}

/// Whether the line ends after a comma or an opening bracket, or before a comma or a closing one.
bool ExpressionParser::breaksLine() const {
    const bool after = at_ > 0 && tokens_[at_ - 1].isAnyMark({",", "(", "[", "{"});
    return after || ahead().isMark(",") || closesBracket(ahead());
}

void ExpressionParser::failAt(Place place, const std::string& message) const {
    throw source_->error(place, message);
}

void ExpressionParser::contain(Expression& whole, const ExpressionPointer& part) const {
    whole.depth = std::max(whole.depth, part->depth + 1);
    whole.calls = whole.calls || part->calls;
    if (whole.depth > kDeepestExpression) failAt(whole.place, "the expression is nested too deeply");
}

bool ExpressionParser::isJoiningWord(const Token& token) {
    static constexpr std::string_view words[] = {
        "then",     "to",     "of",   "in",   "into", "after", "before",    "and",        "or",    "mod",
        "contains", "starts", "down", "else", "end",  "with",  "otherwise", "intersects", "within"};
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return token.isWord(word); });
}

bool ExpressionParser::beginsExpression() const {
    const Token& token = here();
    if (token.endsLine() || isJoiningWord(token)) return false;
    if (token.kind != TokenKind::Mark) return true;
    return opensBracket(token) || token.isMark("-") || token.isMark("+");
}

ExpressionPointer ExpressionParser::expression() {
    // Nested brackets are nested calls of the parser, so the depth is checked while parsing.
    if (++nesting_ > kDeepestExpression) failAt(here().place, "the expression is nested too deeply");
    ExpressionPointer whole = binary(0);
    --nesting_;
    return whole;
}

ExpressionPointer ExpressionParser::binary(int lowest) {
    ExpressionPointer left = unary();
    for (;;) {
        const BinaryOperator* found = binaryOperator(here());
        if (!found || found->level < lowest) return left;
        auto made = node<BinaryExpression>(ExpressionKind::Binary, take().place);
        made->operation = found->operation;
        made->left = std::move(left);
        made->right = binary(found->level + 1);
        contain(*made, made->left);
        contain(*made, made->right);
        left = std::move(made);
    }
}

ExpressionPointer ExpressionParser::unary() {
    if (takeMark("+")) return unary();
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
    const Token& name = expectName("a name after \".\"");
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
    expectMark("]", "the position of the chunk");
    return made;
}

ExpressionPointer ExpressionParser::indexed(ExpressionPointer object) {
    const Place place = take().place;
    do {
        ExpressionPointer index = expression();
        if (here().isMark("..")) return charactersOf(std::move(object), std::move(index), place);
        auto made = node<IndexExpression>(ExpressionKind::Index, place);
        made->object = std::move(object);
        made->index = std::move(index);
        contain(*made, made->object);
        contain(*made, made->index);
        object = std::move(made);
    } while (takeMark(","));
    expectMark("]", "the index");
    return object;
}

/// The rest of `text[2..3]`.
ExpressionPointer ExpressionParser::charactersOf(ExpressionPointer source, ExpressionPointer first,
                                                 Place place) {
    auto made = node<ChunkExpression>(ExpressionKind::Chunk, place);
    made->inBrackets = true;
    made->source = std::move(source);
    made->first = std::move(first);
    take();
    made->last = expression();
    for (const ExpressionPointer* part : {&made->source, &made->first, &made->last}) contain(*made, *part);
    expectMark("]", "the position of the last character");
    return made;
}

}  // namespace krl::player
