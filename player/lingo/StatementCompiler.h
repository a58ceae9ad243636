#pragma once

#include "player/lingo/ExpressionCompiler.h"

namespace krl::player {

/// Compiles handlers.
class StatementCompiler : ExpressionCompiler {
public:
    StatementCompiler(const Handler& handler, const Script& script, Heap& heap, SymbolTable& symbols,
                      Globals& globals)
        : ExpressionCompiler(handler, script, heap, symbols, globals) {}

    HandlerCode compile();

private:
    /// The jumps out of a loop and to its next turn.
    struct Loop {
        std::vector<size_t> exits, nexts;
    };

    void block(const Block& statements);
    void body(const Block& statements);
    static int32_t stepsOf(const Block& statements);
    void statement(const Statement& statement);
    void evaluate(const Expression& expression);
    void put(const PutStatement& statement);
    void answer(const ExpressionStatement& statement);
    size_t jumpUnless(const Expression& condition);
    void conditional(const IfStatement& statement);
    void choice(const CaseStatement& statement);
    void leave(const Statement& statement, std::vector<size_t> Loop::*jumps);
    template <class Again>
    void turns(const RepeatStatement& statement, size_t turn, Again&& again);
    void repeatWhile(const RepeatStatement& statement);
    void repeatWith(const RepeatStatement& statement);
    void countLocal(const RepeatStatement& statement, int32_t direction);
    void repeatIn(const RepeatStatement& statement);
    void finish(const std::vector<size_t>& ends);

    void assignment(const AssignStatement& statement);
    void putInto(const AssignStatement& statement);
    void append(const VariableExpression& target, Place place, Row values);
    void assign(const Expression& target, int32_t value);
    void assignVariable(const VariableExpression& target, int32_t value);
    void assignProperty(const PropertyExpression& target, int32_t value);
    void assignItem(const IndexExpression& target, int32_t value);
    void assignField(const CallExpression& target, int32_t value);
    void assignChunk(const ChunkExpression& target, int32_t value);
    void chunkSource(const ChunkExpression& chunk, int32_t source, int32_t first);
    void remove(const Expression& target);

    Loop* loop_ = nullptr;
};

}  // namespace krl::player
