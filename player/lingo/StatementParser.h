#pragma once

#include "player/lingo/ExpressionParser.h"

namespace krl::player {

/// The part of the parser that reads statements; the handler parser builds on it.
class StatementParser : protected ExpressionParser {
protected:
    using ExpressionParser::ExpressionParser;

    /// Parses statements up to a word that ends or divides a block.
    Block block();
    void passLineEnds();
    /// Parses the names after `global` or `property`.
    void declare(std::vector<SymbolId>& names);
    /// Keeps a mistake and goes on, or throws it if they are not collected.
    void record(const ScriptError& mistake);
    void skipLine();

    /// The `global` declarations of the current handler.
    std::vector<SymbolId> handlerGlobals_;
    /// Where mistakes are collected; null to throw the first.
    std::vector<ScriptError>* mistakes_ = nullptr;
    /// Blocks whose first line was a mistake, so that their `end` is none.
    std::vector<std::string> brokenBlocks_;

private:
    void recoveringStatementInto(Block& body);
    void recover(const Token& first);
    bool passStrayEnd();
    void statementInto(Block& body);
    StatementPointer statement();

    StatementPointer nothing();

    // Assignment and output.
    StatementPointer put();
    bool bracketedArguments() const;
    StatementPointer set();
    ExpressionPointer target();
    ExpressionPointer fieldOrTarget();
    void requireTarget(const Expression& made, Place place) const;
    StatementPointer removal();
    ExpressionPointer deletedChunk(Expression& expression) const;

    // Statements that only a stage can carry out.
    StatementPointer stageStatement();
    StatementPointer go();
    StatementPointer soundCommand();
    StatementPointer open();
    StatementPointer tell();
    StatementPointer when();
    std::unique_ptr<CallExpression> callNamed(const Token& name);
    void add(CallExpression& call, ExpressionPointer argument) const;
    StatementPointer evaluated(ExpressionPointer expression, Place place) const;

    // Calls.
    StatementPointer assignmentOrCall();
    bool commandForm() const;
    StatementPointer command();
    bool spacedArgument(const Token& command) const;
    bool spacedList(const Token& command) const;
    size_t closingBracket(size_t opening) const;
    bool endsStatement() const;

    // Choice.
    StatementPointer conditional();
    void expectThen();
    bool takeElse(Place start, bool inBlock);
    int lineColumn(Place place) const;
    StatementPointer choice();
    Block caseBody();
    bool atLabel() const;

    // Loops and jumps.
    StatementPointer repeat();
    std::unique_ptr<RepeatStatement> repeatWith(Place place);
    StatementPointer giveBack();
    StatementPointer exit();
    StatementPointer nextRepeat();

    // The block between a statement's first line and its `end`.
    void passBlock(Block& body);
    bool endFollows(const char* word) const;
    void endOf(const char* word, Place start);

    int statements_ = 0;  ///< current depth, on one line or several
    int inCase_ = 0;
};

}  // namespace krl::player
