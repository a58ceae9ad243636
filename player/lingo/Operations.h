#pragma once

#include "player/lingo/Arithmetic.h"
#include "player/lingo/Code.h"
#include "player/lingo/Interpreter.h"

namespace krl::player {

/// How a chunk is written, in the last number of an instruction: the kind and the positions that follow.
struct ChunkForm {
    ChunkKind kind;
    bool first, last;

    bool isOneChar() const { return kind == ChunkKind::Char && first && !last; }
    int32_t packed() const { return static_cast<int32_t>(kind) * 4 + first * 2 + last; }
    static ChunkForm of(int32_t number) {
        return {static_cast<ChunkKind>(number / 4), (number & 2) != 0, (number & 1) != 0};
    }
};

/// The instructions, described by their numbers `a` to `d`: operands, registers or plain numbers. A jump to
/// `d` is relative. Temporary values are released once they are used.
struct Operations {
    using Next = const Instruction*;
    using Run = std::remove_pointer_t<Operation>;

    // Values.
    static Run move;           ///< a = b
    static Run copy;           ///< a = b, which is kept
    static Run loadGlobal;     ///< a = global b
    static Run storeGlobal;    ///< global a = b
    static Run loadProperty;   ///< a = property b of `me`, called c
    static Run storeProperty;  ///< property a of `me` = b, called c
    static Run clear;          ///< releases a
    static Run list;           ///< a = a list with room for b items
    static Run addItem;        ///< adds b to the list a
    static Run propertyList;   ///< a = a list with room for b
    static Run addEntry;       ///< adds b: c to the list a

    // Calculations.
    static Run negate;  ///< a = -b
    static Run invert;  ///< a = not b
    /// a = b op c
    static Operation binary(Operator operation);
    /// The same with an integer c
    static Operation binaryBy(Operator operation);
    static Run join;  ///< a = b & ..., c values
    /// variable a & b & ..., c values, called d
    static Operation append(VariableScope scope);

    // Parts of objects.
    static Run property;           ///< a = b.c
    static Run setProperty;        ///< a.b = c
    static Run setChannel;         ///< a.b = c, d if a is no colour
    static Run systemProperty;     ///< a = the b
    static Run setSystemProperty;  ///< the a = b
    static Run item;               ///< a = b[c]
    static Run setItem;            ///< a[b] = c
    static Run deleteItem;         ///< delete a[b]
    static Run setField;           ///< put b into field a

    // Texts.
    static Run text;         ///< a = b as text
    static Run chunkText;    ///< a = b as text whose chunks change; of a member if c is 1
    static Run requireText;  ///< refuses a that is no text, before brackets
    static Run show;         ///< a = b as `put` shows it
    static Run chunk;        ///< a = chunk c to c + 1 of b, form d
    static Run chunkCount;   ///< a = the number of chunks in b, form d
    static Run putChunk;     ///< a = b with c + 2 in its place
    static Run deleteChunk;  ///< a = b without it

    // Calls.
    static Run call;    ///< a = b(c, ...), d values; a may be -1
    static Run send;    ///< a = c.b(c + 1, ...), d values
    static Run answer;  ///< return a
    static Run end;

    // Statements.
    static Run step;        ///< begins a block of a statements, or a turn of a loop with them
    static Run put;         ///< put a, ..., b values as shown
    static Run jump;        ///< to d
    static Run jumpUnless;  ///< to d unless a
    /// to d unless a op b
    static Operation jumpUnlessBinary(Operator operation);
    /// The same with an integer b
    static Operation jumpUnlessBinaryBy(Operator operation);
    static Run jumpIfEqual;  ///< to d if a = b; keeps a
    static Run count;        ///< a = b as an integer
    static Run countTurn;    ///< to d if a is beyond b; c steps, below 0 to count down
    static Run countOn;      ///< a = b + 1, or - 1 if c is below 0, and back to d
    static Run countAgain;   ///< the same of a, back to d unless it is beyond b; c steps
    static Run each;         ///< begins with the list a, a + 1 = 0
    static Run eachTurn;     ///< a = next of the list b and c steps, or to d
    static Run refuse;       ///< there is nothing to assign to

private:
    template <Operator kOperation>
    static Next calculate(Interpreter&, Frame&, const Instruction&);
    template <Operator kOperation>
    static Next calculateBy(Interpreter&, Frame&, const Instruction&);
    template <Operator kOperation>
    static Next unless(Interpreter&, Frame&, const Instruction&);
    template <Operator kOperation>
    static Next unlessBy(Interpreter&, Frame&, const Instruction&);
    template <VariableScope kScope>
    static Next appendTo(Interpreter&, Frame&, const Instruction&);
    template <VariableScope kScope>
    static Value& variable(Interpreter&, Frame&, const Instruction&, int32_t name);
    static Next result(Frame& frame, const Instruction& at, Value made);
    template <bool kMethod>
    static Next callBy(Interpreter&, Frame&, const Instruction&);
    static Next leave(Interpreter&, Frame&, Value answer);
    static int32_t whole(Interpreter&, Frame&, int32_t operand);
    static int32_t converted(Interpreter&, Frame&, int32_t operand);
    static int32_t position(Interpreter&, const Frame&, int32_t operand);
    static std::pair<int32_t, int32_t> range(Interpreter&, Frame&, const Instruction&, std::string_view text);
};

}  // namespace krl::player
