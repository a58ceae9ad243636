#include "player/lingo/StatementParser.h"

#include <algorithm>
#include <utility>

#include "catalogue/NearestName.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Parser.h"

namespace krl::player {

namespace {

const std::vector<std::string> kStatementWords = {"on",       "end",  "if",    "else",   "repeat",
                                                  "case",     "set",  "put",   "return", "global",
                                                  "property", "exit", "delete"};

bool isListCommand(const Token& name) {
    return name.isAnyWord({"add", "append", "addat", "addprop", "setaprop", "setat", "setprop"});
}

}  // namespace

void StatementParser::passLineEnds() {
    if (!here().endsLine()) fail("the end of the line");
    while (here().kind == TokenKind::LineEnd) take();
}

void StatementParser::declare(std::vector<SymbolId>& names) {
    take();
    do {
        const Token& name = expectName("the name of a variable");
        names.push_back(symbols_.identifier(name.text));
    } while (takeMark(","));
}

Block StatementParser::block() {
    Block body;
    for (;;) {
        if (passStrayEnd()) continue;
        if (here().kind == TokenKind::End || here().isAnyWord({"end", "else"}) ||
            (here().isWord("on") && !ahead().isMark("=")) || (inCase_ > 0 && atLabel()))
            return body;
        recoveringStatementInto(body);
    }
}

/// One statement and its line end. After a mistake, parsing goes on in the next line.
void StatementParser::recoveringStatementInto(Block& body) {
    const Token& first = here();
    const int statements = statements_, inCase = inCase_;
    const size_t variables = variables_.size(), before = body.size();
    std::vector<std::string> broken = brokenBlocks_;
    try {
        statementInto(body);
        passLineEnds();
    } catch (const ScriptError& mistake) {
        // Every line further in would be the same mistake: give the handler up.
        if (statements_ > kDeepestStatement) throw;
        record(mistake);
        statements_ = statements;
        inCase_ = inCase;
        brokenBlocks_ = std::move(broken);
        // The variables of a statement that was given up are gone.
        if (body.size() == before) variables_.resize(std::min(variables_.size(), variables));
        recover(first);
    }
}

void StatementParser::record(const ScriptError& mistake) {
    if (!mistakes_) throw mistake;
    mistakes_->push_back(mistake);
    resetNesting();
    statements_ = inCase_ = 0;
}

void StatementParser::recover(const Token& first) {
    // A missing `end` is found at the end of an outer block, which may be right.
    const bool missingEnd = here().isAnyWord({"end", "on"}) && here().place.line > first.place.line;
    if (missingEnd) return;
    const bool firstLine = here().place.line == first.place.line;
    if (firstLine && first.isAnyWord({"if", "repeat", "case", "tell"}))
        brokenBlocks_.push_back(folded(first.text));
    skipLine();
}

void StatementParser::skipLine() {
    while (!here().endsLine()) take();
    while (here().kind == TokenKind::LineEnd) take();
}

/// Passes an `end` or `else` that belongs to a block whose first line was a mistake.
bool StatementParser::passStrayEnd() {
    if (brokenBlocks_.empty()) return false;
    const std::string& innermost = brokenBlocks_.back();
    const bool end = here().isWord("end") && ahead().isWord(innermost.c_str());
    const bool between = innermost == "if" && here().isWord("else");
    if (end) brokenBlocks_.pop_back();
    if (end || between) skipLine();
    return end || between;
}

void StatementParser::statementInto(Block& body) {
    if (here().isWord("global") && ahead().kind == TokenKind::Name) return declare(handlerGlobals_);
    if (here().isWord("property") && ahead().kind == TokenKind::Name) return declare(script_->properties);
    if (++statements_ > kDeepestStatement) failAt(here().place, "the statements are nested too deeply");
    body.push_back(statement());
    --statements_;
}

StatementPointer StatementParser::statement() {
    const Token& first = here();
    if (first.kind != TokenKind::Name) {
        if (first.isMark("(") || first.isMark("[")) return assignmentOrCall();
        fail("a statement");
    }
    const bool variable = ahead().isMark("=") || ahead().isMark(".");
    if (variable) return assignmentOrCall();
    if (first.isWord("put")) return put();
    if (first.isWord("set")) return set();
    if (first.isWord("if")) return conditional();
    if (first.isWord("repeat")) return repeat();
    if (first.isWord("case")) return choice();
    if (first.isWord("return")) return giveBack();
    if (first.isWord("exit")) return exit();
    if (first.isWord("next")) return nextRepeat();
    if (first.isWord("delete")) return removal();
    if (first.isWord("nothing") || first.isWord("pass")) return nothing();
    if (StatementPointer made = stageStatement()) return made;
    return assignmentOrCall();
}

/// `nothing` and `pass`, with or without brackets.
StatementPointer StatementParser::nothing() {
    auto made = std::make_unique<Statement>(StatementKind::Nothing, take().place);
    if (takeMark("(")) expectMark(")", "\"(\"");
    return made;
}

StatementPointer StatementParser::put() {
    const Place place = take().place;
    auto made = std::make_unique<PutStatement>(StatementKind::Put, place);
    if (bracketedArguments()) {
        take();
        made->values = expressionsUpTo(")");
        return made;
    }
    if (endsStatement()) return made;
    do made->values.push_back(expression());
    while (takeMark(","));
    static constexpr const char* modes[] = {"into", "after", "before"};
    for (int mode = 0; mode < 3; ++mode)
        if (made->values.size() == 1 && takeWord(modes[mode])) {
            auto assign = std::make_unique<AssignStatement>(StatementKind::PutInto, place);
            assign->mode = static_cast<PutMode>(mode);
            assign->value = std::move(made->values.front());
            assign->target = fieldOrTarget();
            return assign;
        }
    return made;
}

/// Whether a bracket here closes at the end of the statement and contains a top-level comma.
bool StatementParser::bracketedArguments() const {
    if (!here().isMark("(")) return false;
    int open = 0;
    bool comma = false;
    for (size_t i = 0; !ahead(i).endsLine(); ++i) {
        const Token& token = ahead(i);
        if (opensBracket(token)) ++open;
        if (closesBracket(token)) --open;
        if (open == 1 && token.isMark(",")) comma = true;
        if (open == 0) return comma && (ahead(i + 1).endsLine() || ahead(i + 1).isWord("else"));
    }
    return false;
}

ExpressionPointer StatementParser::target() {
    const Place place = here().place;
    ExpressionPointer made = accessPath();
    requireTarget(*made, place);
    return made;
}

/// `put text into member "a"` means its text, like that of a field.
ExpressionPointer StatementParser::fieldOrTarget() {
    const Place place = here().place;
    ExpressionPointer made = accessPath();
    if (made->kind == ExpressionKind::Call) {
        SymbolId& name = static_cast<CallExpression&>(*made).name;
        for (const char* reference : {"member", "cast"})
            if (sameText(symbols_.spelling(name), reference)) name = symbols_.identifier("field");
    }
    requireTarget(*made, place);
    return made;
}

void StatementParser::requireTarget(const Expression& made, Place place) const {
    switch (made.kind) {
        case ExpressionKind::Variable:
        case ExpressionKind::Property:
        case ExpressionKind::SystemProperty:
        case ExpressionKind::Index:
        case ExpressionKind::Chunk:
            return;
        case ExpressionKind::Call:
            // `put 1 into field "a"`
            if (sameText(symbols_.spelling(static_cast<const CallExpression&>(made).name), "field")) return;
            [[fallthrough]];
        default:
            failAt(place, "expected a variable, a property, an element of a list or a chunk to assign to");
    }
}

StatementPointer StatementParser::set() {
    auto made = std::make_unique<AssignStatement>(StatementKind::Assign, take().place);
    made->target = target();
    if (!takeMark("=") && !takeWord("to")) fail("\"to\" or \"=\" after the target");
    made->value = expression();
    return made;
}

StatementPointer StatementParser::assignmentOrCall() {
    const Token& first = here();
    if (commandForm()) return command();
    ExpressionPointer path = accessPath();
    if (here().isMark("=")) {
        requireTarget(*path, first.place);
        auto made = std::make_unique<AssignStatement>(StatementKind::Assign, take().place);
        made->target = std::move(path);
        made->value = expression();
        return made;
    }
    auto made = std::make_unique<ExpressionStatement>(StatementKind::Evaluate, first.place);
    // A lone name is a call.
    if (path->kind == ExpressionKind::Variable) {
        variables_.pop_back();
        auto alone = std::make_unique<CallExpression>(ExpressionKind::Call, first.place);
        alone->name = symbols_.identifier(first.text);
        path = std::move(alone);
    }
    made->expression = std::move(path);
    if (!endsStatement()) fail("\"=\" or the end of the line", didYouMean(first.text, kStatementWords));
    if (ExpressionPointer chunk = deletedChunk(*made->expression)) {
        made = std::make_unique<ExpressionStatement>(StatementKind::Delete, first.place);
        made->expression = std::move(chunk);
    }
    return made;
}

/// The chunk of `text.word[2].delete()`, or nothing for another expression.
ExpressionPointer StatementParser::deletedChunk(Expression& expression) const {
    if (expression.kind != ExpressionKind::MethodCall) return nullptr;
    auto& call = static_cast<CallExpression&>(expression);
    const bool isDelete = call.object->kind == ExpressionKind::Chunk && call.arguments.empty() &&
                          sameText(symbols_.spelling(call.name), "delete");
    return isDelete ? std::move(call.object) : nullptr;
}

/// `name argument, argument`
bool StatementParser::commandForm() const {
    if (here().kind != TokenKind::Name || here().isWord("the")) return false;
    const Token& next = ahead();
    if (next.endsLine() || next.isWord("else")) return false;
    if (next.isMark("(")) return spacedArgument(here());
    if (next.isMark("[")) return spacedList(here());
    // `x - 1` is no statement, but `alert -1` is.
    return next.kind != TokenKind::Mark || next.isAnyMark({"-", "{"});
}

/// Whether the command is one for lists, written `append (list), x`.
bool StatementParser::spacedArgument(const Token& command) const {
    if (!isListCommand(command) || ahead().begin == command.end) return false;
    return ahead(closingBracket(1) + 1).isMark(",");
}

/// Whether the command is written `sort [3, 1]`, and not `list [1] = 2`.
bool StatementParser::spacedList(const Token& command) const {
    const Token& after = ahead(closingBracket(1) + 1);
    return ahead().begin > command.end && (after.endsLine() || after.isMark(","));
}

/// Where the bracket ahead closes, or the end of the line.
size_t StatementParser::closingBracket(size_t opening) const {
    int open = 0;
    size_t i = opening;
    for (; !ahead(i).endsLine(); ++i) {
        if (opensBracket(ahead(i))) ++open;
        if (closesBracket(ahead(i)) && --open == 0) break;
    }
    return i;
}

StatementPointer StatementParser::command() {
    const Token& name = take();
    auto made = callNamed(name);
    if (!beginsExpression()) fail("a statement", didYouMean(name.text, kStatementWords));
    // `append list (x)`: the list is no function.
    if (here().kind == TokenKind::Name && ahead().isMark("(") && ahead().begin > here().end &&
        isListCommand(name)) {
        add(*made, variable(take()));
        add(*made, expression());
    } else {
        add(*made, expression());
        if (here().isMark("(") && isListCommand(name)) add(*made, expression());
    }
    while (takeMark(",")) add(*made, expression());
    if (!endsStatement()) fail("\",\" or the end of the line", didYouMean(name.text, kStatementWords));
    return evaluated(std::move(made), name.place);
}

std::unique_ptr<CallExpression> StatementParser::callNamed(const Token& name) {
    auto made = std::make_unique<CallExpression>(ExpressionKind::Call, name.place);
    made->name = symbols_.identifier(name.text);
    return made;
}

void StatementParser::add(CallExpression& call, ExpressionPointer argument) const {
    contain(call, argument);
    call.arguments.push_back(std::move(argument));
}

StatementPointer StatementParser::evaluated(ExpressionPointer expression, Place place) const {
    auto whole = std::make_unique<ExpressionStatement>(StatementKind::Evaluate, place);
    whole->expression = std::move(expression);
    return whole;
}

/// An `else` may follow a statement on the same line.
bool StatementParser::endsStatement() const { return here().endsLine() || here().isWord("else"); }

StatementPointer StatementParser::giveBack() {
    auto made = std::make_unique<ExpressionStatement>(StatementKind::Return, take().place);
    if (!endsStatement()) made->expression = expression();
    return made;
}

StatementPointer StatementParser::exit() {
    const Place place = take().place;
    return std::make_unique<Statement>(takeWord("repeat") ? StatementKind::ExitRepeat : StatementKind::Exit,
                                       place);
}

StatementPointer StatementParser::nextRepeat() {
    const Place place = take().place;
    expectWord("repeat", "\"next\"");
    return std::make_unique<Statement>(StatementKind::NextRepeat, place);
}

StatementPointer StatementParser::removal() {
    auto made = std::make_unique<ExpressionStatement>(StatementKind::Delete, take().place);
    const Place place = here().place;
    made->expression = accessPath();
    if (made->expression->kind != ExpressionKind::Chunk && made->expression->kind != ExpressionKind::Index)
        failAt(place, "expected a chunk or an element of a list to delete");
    return made;
}

}  // namespace krl::player
