#pragma once

#include <map>
#include <utility>

#include "player/host/Heap.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Code.h"
#include "player/lingo/Globals.h"

namespace krl::player {

/// Compiles expressions: into a given register, or to an operand.
class ExpressionCompiler {
protected:
    ExpressionCompiler(const Handler& handler, const Script& script, Heap& heap, SymbolTable& symbols,
                       Globals& globals)
        : script_(script), heap_(heap), symbols_(symbols), globals_(globals) {
        code_.handler = &handler;
        code_.parameters = static_cast<int32_t>(handler.parameters);
        next_ = code_.registers = code_.locals = static_cast<int32_t>(handler.locals.size());
    }

    /// Returns the registers that are taken during its lifetime.
    class Temporaries {
    public:
        explicit Temporaries(ExpressionCompiler& compiler) : next_(compiler.next_), first_(next_) {}
        ~Temporaries() { next_ = first_; }
        Temporaries(const Temporaries&) = delete;
        Temporaries& operator=(const Temporaries&) = delete;

    private:
        int32_t& next_;
        const int32_t first_;
    };

    /// Adds an instruction and returns its number.
    size_t emit(Place place, Operation run, int32_t a = 0, int32_t b = 0, int32_t c = 0, int32_t d = 0);
    size_t here() const { return code_.instructions.size(); }
    /// Makes the jump `from` lead to `target`, or to the next instruction.
    void land(size_t from, size_t target);
    void land(size_t from) { land(from, here()); }

    /// The first of `count` unused registers.
    int32_t temporary(int32_t count = 1);
    bool isTemporary(int32_t operand) const { return operand >= code_.locals; }

    /// The value of an expression in `target`.
    void into(const Expression& expression, int32_t target);
    /// The value in a register of its own.
    int32_t temporaryOf(const Expression& expression);
    /// The constant or local variable that an expression is, or its value in a temporary register.
    int32_t operand(const Expression& expression);
    /// The same for one that is evaluated before others; if those call anything, in a temporary register.
    int32_t operand(const Expression& expression, bool othersCall);
    /// The two operands of an operator.
    std::pair<int32_t, int32_t> operands(const BinaryExpression& expression);
    /// A row of registers with the values in a chain of `&`, from the first or the second one on.
    struct Row {
        int32_t first, count;
    };
    Row joinedValues(const BinaryExpression& joined, bool fromSecond);
    /// The positions of a chunk in two registers.
    void positions(const ChunkExpression& chunk, int32_t first);
    static int32_t formOf(const ChunkExpression& chunk);
    /// Without a target, its result is ignored.
    void call(const CallExpression& expression, int32_t target = -1);
    /// The number of a property that the script declares.
    int32_t property(SymbolId name) const;

    HandlerCode code_;
    const Script& script_;
    Heap& heap_;
    SymbolTable& symbols_;
    Globals& globals_;

private:
    int32_t constant(const LiteralExpression& literal);
    int32_t constant(Value value);
    void variable(const VariableExpression& expression, int32_t target);
    void unary(const UnaryExpression& expression, Operation run, int32_t target);
    void binary(const BinaryExpression& expression, int32_t target);
    void list(const ListExpression& expression, int32_t target);
    void item(const IndexExpression& expression, int32_t target);
    void chunk(const ChunkExpression& expression, int32_t target);
    void chunkCount(const ChunkExpression& expression, int32_t target);
    int32_t space();

    int32_t next_;
    int32_t space_ = 0;  ///< the constant " ", which `&&` joins with; 0 for none
    std::map<std::pair<Kind, int32_t>, int32_t> known_;  ///< constants by kind and payload
};

/// The slot of a local variable; -1 for any other expression.
int32_t localSlot(const Expression& expression);
/// An integer as written; null for any other expression.
const LiteralExpression* asInteger(const Expression& expression);
/// The operands of `&` and `&&`; null for any other expression.
const BinaryExpression* asJoin(const Expression& expression);

}  // namespace krl::player
