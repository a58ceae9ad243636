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

    /// The `global` declarations of the current handler.
    std::vector<SymbolId> handlerGlobals_;

private:
    void statementInto(Block& body);
    StatementPointer statement();

    // Assignment and output.
    StatementPointer put();
    bool bracketedArguments() const;
    StatementPointer set();
    ExpressionPointer target();
    void requireTarget(const Expression& made, Place place) const;
    StatementPointer removal();

    // Calls.
    StatementPointer assignmentOrCall();
    bool commandForm() const;
    StatementPointer command();
    bool endsStatement() const;

    // Choice.
    StatementPointer conditional();
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
