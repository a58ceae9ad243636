#include "player/lingo/StatementParser.h"

/// Statements that need a stage. They become calls, which are refused when they run.
namespace krl::player {

/// Null for any other statement.
StatementPointer StatementParser::stageStatement() {
    const Token& next = ahead();
    if (next.isAnyMark({"=", ".", "[", "("})) return nullptr;
    if (here().isWord("go") || here().isWord("play")) return go();
    if (here().isWord("tell") && !next.endsLine()) return tell();
    if (here().isWord("when") && next.kind == TokenKind::Name) return when();
    if (here().isWord("open") && !next.endsLine()) return open();
    const bool command = next.kind == TokenKind::Name && !ahead(2).endsLine();
    return here().isWord("sound") && command ? soundCommand() : nullptr;
}

/// `go to frame 5 of movie "x"`, `go loop`, `play done`
StatementPointer StatementParser::go() {
    const Token& name = take();
    auto made = callNamed(name);
    takeWord("to");
    while (!endsStatement()) {
        if (here().isAnyWord({"frame", "movie"}) && !ahead().endsLine()) {
            take();
            add(*made, expression());
        } else if (here().isAnyWord({"loop", "next", "previous", "done"})) {
            add(*made, text(take().text, name.place));
        } else {
            add(*made, expression());
        }
        if (!takeMark(",") && !takeWord("of")) break;
    }
    if (!endsStatement()) fail("the end of the line");
    return evaluated(std::move(made), name.place);
}

/// `sound playFile 1, "x"`
StatementPointer StatementParser::soundCommand() {
    const Token& name = take();
    auto made = callNamed(name);
    add(*made, text(take().text, name.place));
    do add(*made, expression());
    while (takeMark(","));
    if (!endsStatement()) fail("\",\" or the end of the line");
    return evaluated(std::move(made), name.place);
}

/// `open window "x"`, `open "file" with "program"`
StatementPointer StatementParser::open() {
    const Token& name = take();
    auto made = callNamed(name);
    add(*made, expression());
    if (takeWord("with") || takeMark(",")) add(*made, expression());
    if (!endsStatement()) fail("the end of the line");
    return evaluated(std::move(made), name.place);
}

/// `tell window "x" to f()`, or a block up to `end tell`. What it tells is the body of a choice whose
/// condition is refused.
StatementPointer StatementParser::tell() {
    const Token& name = take();
    auto made = std::make_unique<IfStatement>(StatementKind::If, name.place);
    IfStatement::Branch& branch = made->branches.emplace_back();
    auto call = callNamed(name);
    add(*call, expression());
    branch.condition = std::move(call);
    if (takeWord("to")) {
        statementInto(branch.body);
        return made;
    }
    passBlock(branch.body);
    endOf("tell", name.place);
    return made;
}

/// `when keyDown then f()`
StatementPointer StatementParser::when() {
    const Token& name = take();
    auto made = std::make_unique<IfStatement>(StatementKind::If, name.place);
    IfStatement::Branch& branch = made->branches.emplace_back();
    auto call = callNamed(name);
    add(*call, text(take().text, name.place));
    branch.condition = std::move(call);
    expectWord("then", "the event");
    statementInto(branch.body);
    return made;
}

}  // namespace krl::player
