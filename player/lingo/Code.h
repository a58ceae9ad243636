#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "player/host/Value.h"
#include "player/lingo/Syntax.h"

/// Handlers in the form that runs: instructions on numbered registers.
namespace krl::player {

class Interpreter;
struct Frame;
struct Instruction;
struct LoadedScript;
struct PropertyHolder;

/// Carries out an instruction. Returns the next one, or null at the end of the handler.
using Operation = const Instruction* (*)(Interpreter&, Frame&, const Instruction&);

/// What the numbers mean depends on the operation; see `Operations`.
struct Instruction {
    Operation run;
    int32_t a, b, c, d;
};

/// A compiled handler. Its first registers are the local variables, the rest hold temporary values, each of
/// which is used once.
struct HandlerCode {
    const Handler* handler = nullptr;
    std::vector<Instruction> instructions;
    std::vector<Place> places;  ///< of each instruction
    std::vector<Value> constants;
    int32_t parameters = 0;  ///< the first local variables
    int32_t locals = 0;
    int32_t registers = 0;
};

/// A running handler.
struct Frame {
    const LoadedScript* script = nullptr;
    const HandlerCode* code = nullptr;
    std::span<const Value> arguments;
    Value owner;                           ///< whose properties are in scope: an instance or script, or VOID
    PropertyHolder* properties = nullptr;  ///< those of the owner; null if it is VOID
    Value* registers = nullptr;
    const Value* constants = nullptr;
    int32_t locals = 0;
    bool outermost = false;  ///< not called by an instruction
    const Instruction* at = nullptr;
    Frame* caller = nullptr;
    Frame* callee = nullptr;  ///< the frame of the next level, once there has been one
    Value answer;             ///< of an outermost one

    /// The value in a register, or a constant, whose numbers are below 0.
    const Value& operand(int32_t number) const { return number < 0 ? constants[~number] : registers[number]; }
    /// A copy of an operand; VOID for a variable without a value. Moves a temporary value.
    Value take(int32_t number) {
        if (number >= locals) return std::move(registers[number]);
        const Value& found = operand(number);
        return found.isVoid() ? Value() : found;
    }
    /// Releases a temporary value.
    void drop(int32_t number) {
        if (number >= locals && registers[number].hasObject()) registers[number] = Value();
    }
    void drop(int32_t first, int32_t count) {
        for (int32_t i = 0; i < count; ++i)
            if (registers[first + i].hasObject()) registers[first + i] = Value();
    }
    Place place() const { return code->places[static_cast<size_t>(at - code->instructions.data())]; }
};

}  // namespace krl::player
