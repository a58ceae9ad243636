#include <algorithm>
#include <utility>

#include "player/lingo/StatementParser.h"

/// Statements with blocks: choices and loops.
namespace krl::player {

StatementPointer StatementParser::conditional() {
    const Token& first = here();
    auto made = std::make_unique<IfStatement>(StatementKind::If, first.place);
    for (;;) {
        take();
        IfStatement::Branch& branch = made->branches.emplace_back();
        branch.condition = expression();
        expectThen();
        const bool inBlock = here().endsLine();
        if (inBlock)
            passBlock(branch.body);
        else
            statementInto(branch.body);
        if (!takeElse(first.place, inBlock)) {
            if (inBlock) endOf("if", first.place);
            return made;
        }
        if (here().isWord("if")) continue;
        if (here().endsLine()) {
            passBlock(made->otherwise);
            endOf("if", first.place);
        } else {
            statementInto(made->otherwise);
            if (inBlock && endFollows("if")) {
                passLineEnds();
                endOf("if", first.place);
            }
        }
        return made;
    }
}

/// It may begin the next line.
void StatementParser::expectThen() {
    if (here().kind == TokenKind::LineEnd && ahead().isWord("then")) take();
    expectWord("then", "the condition");
}

void StatementParser::passBlock(Block& body) {
    passLineEnds();
    const int outer = std::exchange(inCase_, 0);
    std::vector<std::string> broken = std::exchange(brokenBlocks_, {});
    body = block();
    brokenBlocks_ = std::move(broken);
    inCase_ = outer;
}

/// An `else` on the same line, or at the start of the next one. There it belongs to the
/// innermost `if` whose indentation is not greater.
bool StatementParser::takeElse(Place start, bool inBlock) {
    if (inBlock || here().isWord("else")) return takeWord("else");
    if (here().kind != TokenKind::LineEnd || !ahead().isWord("else")) return false;
    if (ahead().place.column < lineColumn(start)) return false;
    take();
    return takeWord("else");
}

/// Column of the first character in the line of `place`.
int StatementParser::lineColumn(Place place) const {
    const std::string line = source_->line(place.line);
    return static_cast<int>(std::min(line.find_first_not_of(" \t"), line.size())) + 1;
}

bool StatementParser::endFollows(const char* word) const {
    return here().kind == TokenKind::LineEnd && ahead().isWord("end") && ahead(2).isWord(word);
}

void StatementParser::endOf(const char* word, Place start) {
    if (here().isWord("end") && ahead().isWord(word)) {
        take();
        take();
        return;
    }
    fail(std::string("\"end ") + word + "\" for the \"" + word + "\" of line " + std::to_string(start.line));
}

StatementPointer StatementParser::repeat() {
    const Place place = take().place;
    const bool loop = here().isWord("while");
    if (!loop && !here().isWord("with")) fail("\"while\" or \"with\" after \"repeat\"");
    take();
    std::unique_ptr<RepeatStatement> made;
    if (loop) {
        made = std::make_unique<RepeatStatement>(StatementKind::RepeatWhile, place);
        made->condition = expression();
    } else {
        made = repeatWith(place);
    }
    takeWord("then");
    passBlock(made->body);
    endOf("repeat", place);
    return made;
}

std::unique_ptr<RepeatStatement> StatementParser::repeatWith(Place place) {
    auto counter = variable(expectName("the name of a variable after \"with\""));
    const bool over = takeWord("in");
    auto made =
        std::make_unique<RepeatStatement>(over ? StatementKind::RepeatIn : StatementKind::RepeatWith, place);
    made->variable = std::move(counter);
    if (over) {
        made->list = expression();
        return made;
    }
    if (!takeMark("=")) fail("\"=\" or \"in\" after the variable");
    made->from = expression();
    made->down = takeWord("down");
    expectWord("to", made->down ? "\"down\"" : "the first number");
    made->to = expression();
    return made;
}

StatementPointer StatementParser::choice() {
    auto made = std::make_unique<CaseStatement>(StatementKind::Case, take().place);
    made->subject = expression();
    expectWord("of", "the value to compare");
    passLineEnds();
    const int outer = std::exchange(inCase_, 1);
    while (!here().isWord("end") && !here().isWord("otherwise")) {
        if (!atLabel()) fail("a value and \":\", \"otherwise\" or \"end case\"");
        CaseStatement::Branch& branch = made->branches.emplace_back();
        do branch.labels.push_back(expression());
        while (takeMark(","));
        expectMark(":", "the value");
        branch.body = caseBody();
    }
    if (takeWord("otherwise")) {
        takeMark(":");
        made->otherwise = caseBody();
    }
    inCase_ = outer;
    endOf("case", made->place);
    return made;
}

Block StatementParser::caseBody() {
    Block body;
    if (!here().endsLine()) statementInto(body);
    passLineEnds();
    Block more = block();
    std::move(more.begin(), more.end(), std::back_inserter(body));
    return body;
}

/// Whether a line of a `case` is a label: it has a colon outside brackets, or it is `otherwise`.
bool StatementParser::atLabel() const {
    if (here().isWord("otherwise")) return true;
    int open = 0;
    for (size_t i = 0; !ahead(i).endsLine(); ++i) {
        if (opensBracket(ahead(i))) ++open;
        if (closesBracket(ahead(i))) --open;
        if (open == 0 && ahead(i).isMark(":")) return true;
    }
    return false;
}

}  // namespace krl::player
