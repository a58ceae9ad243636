#include "player/host/SymbolTable.h"
#include "player/lingo/ExpressionParser.h"
#include "player/lingo/Parser.h"

/// Chunks, `the`, and references such as `member "x" of castLib 2`.
namespace krl::player {

bool ExpressionParser::isChunkName(const Token& token, ChunkKind& kind) {
    static constexpr std::string_view names[] = {"char", "word", "item", "line"};
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
    if (next.kind == TokenKind::Integer || next.kind == TokenKind::Float) return true;
    const bool signedNumber = next.isAnyMark({"-", "+"}) && ahead(3).isAnyWord({"to", "of", "in"});
    return signedNumber || next.isMark("(") || (next.kind == TokenKind::Name && !isJoiningWord(next));
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
    if (name.isAnyWord({"long", "short", "abbreviated", "abbrev", "abbr"}) &&
        here().isAnyWord({"time", "date"}))
        name = take();
    ExpressionPointer made;
    ChunkKind kind;
    if (name.isWord("last") && isChunkName(here(), kind)) {
        take();
        made = countOf(kind, ExpressionKind::Chunk, place);
    } else if (name.isWord("number") && takesOf()) {
        made = theNumberOf(name.place);
    } else {
        made = theProperty(name, symbols_.identifier(name.text));
    }
    --nesting_;
    return made;
}

/// Takes the `of` before an object. The `of` at the end of a line belongs to `case`.
bool ExpressionParser::takesOf() { return !ahead().endsLine() && takeWord("of"); }

ExpressionPointer ExpressionParser::theProperty(const Token& name, SymbolId property) {
    const bool ofObject = takesOf();
    auto made = node<PropertyExpression>(ofObject ? ExpressionKind::Property : ExpressionKind::SystemProperty,
                                         name.place);
    made->name = property;
    if (ofObject) {
        made->object = accessPath();
        contain(*made, made->object);
        // `field "name"` is a text, but `the text of field "name"` is a property of the member.
        if (made->object->kind == ExpressionKind::Call) {
            SymbolId& function = static_cast<CallExpression&>(*made->object).name;
            if (function == symbols_.identifier("field")) function = symbols_.identifier("member");
        }
    }
    return made;
}

/// `the number of lines in s`, `the number of members of castLib 1`, `the number of member "x"`.
ExpressionPointer ExpressionParser::theNumberOf(Place place) {
    static constexpr const char* kinds[] = {"members", "castMembers", "castLibs", "xtras",
                                            "menus",   "menuItems",   "windows"};
    const Token& plural = here();
    Token singular = plural;
    if (!singular.text.empty()) singular.text.pop_back();
    ChunkKind kind;
    if (isChunkName(singular, kind)) {
        take();
        return countOf(kind, ExpressionKind::ChunkCount, place);
    }
    for (const char* one : kinds)
        if (sameText(plural.text, one))
            return theProperty(take(), symbols_.identifier(std::string("number of ") + one));
    if (!plural.isAnyWord({"member", "cast", "castlib", "field"}))
        failAt(plural.place, "expected chars, words, items or lines to count");
    auto made = node<PropertyExpression>(ExpressionKind::Property, place);
    made->name = symbols_.identifier("number");
    made->object = accessPath();
    contain(*made, made->object);
    return made;
}

ExpressionPointer ExpressionParser::countOf(ChunkKind kind, ExpressionKind what, Place place) {
    auto made = node<ChunkExpression>(what, place);
    made->chunk = kind;
    expectIn();
    made->source = accessPath();
    contain(*made, made->source);
    return made;
}

/// A reference without parentheses, or an object made by `new`; null for anything else.
ExpressionPointer ExpressionParser::referenced() {
    static constexpr const char* kinds[] = {"xtra",  "script", "member", "cast", "castLib",
                                            "field", "sprite", "window", "sound"};
    if (here().isWord("new") && ahead().isAnyWord({"script", "xtra"}) && !ahead(2).isMark("="))
        return newObject();
    for (const char* kind : kinds) {
        if (!sameText(here().text, kind) || here().kind != TokenKind::Name) continue;
        const Token& name = take();
        if (beginsReference()) return reference(name);
        --at_;
        return bracketedReference();
    }
    return nullptr;
}

/// `member(1) of castLib 2`; null for anything else.
ExpressionPointer ExpressionParser::bracketedReference() {
    if (!here().isAnyWord({"member", "cast", "field"}) || !ahead().isMark("(")) return nullptr;
    const Token& name = take();
    auto made = call(name);
    ofCast(*made);
    return made;
}

/// `new script "Name"` with or without brackets around the name.
ExpressionPointer ExpressionParser::newObject() {
    const Token& name = take();
    auto made = node<CallExpression>(ExpressionKind::Call, name.place);
    made->name = symbols_.identifier(name.text);
    made->arguments.push_back(primary());
    contain(*made, made->arguments.back());
    return made;
}

/// Whether a reference follows `member` and the like without parentheses.
bool ExpressionParser::beginsReference() const {
    const Token& next = here();
    return next.kind == TokenKind::String || next.kind == TokenKind::Integer ||
           (next.kind == TokenKind::Name && !isJoiningWord(next));
}

/// `xtra "Name"`, `member name of castLib 2`, `sprite me.spriteNum`: calls without parentheses.
std::unique_ptr<CallExpression> ExpressionParser::reference(const Token& name) {
    auto made = node<CallExpression>(ExpressionKind::Call, name.place);
    made->name = symbols_.identifier(name.text);
    made->arguments.push_back(referredTo());
    contain(*made, made->arguments.back());
    ofCast(*made);
    return made;
}

/// A literal, a variable, `me.spriteNum` or `the spriteNum of me`.
ExpressionPointer ExpressionParser::referredTo() {
    if (here().kind != TokenKind::Name) return literal();
    if (here().isWord("the")) return the();
    const bool own = here().isWord("me") && ahead().isMark(".");
    if (!own) return variable(take());
    ExpressionPointer me = variable(take());
    return dotted(std::move(me));
}

void ExpressionParser::ofCast(CallExpression& member) {
    if (!here().isAnyWord({"of", "in"}) || !ahead().isWord("castlib")) return;
    take();
    take();
    if (here().isMark("("))
        member.arguments.push_back(bracketed());
    else if (beginsReference())
        member.arguments.push_back(referredTo());
    else
        fail("the name or number of a cast");
    contain(member, member.arguments.back());
}

}  // namespace krl::player
