#pragma once

#include "core/Numbers.h"
#include "player/lingo/Runtime.h"
#include "player/lingo/Syntax.h"

namespace krl::player {

/// Whether a value counts as true: any number that is not 0.
bool truthOf(const Value& value);

/// The fast path for two integers; false if it takes `operate`.
inline bool operateOnIntegers(Operator operation, int32_t a, int32_t b, Value& result) {
    switch (operation) {
        case Operator::Add:
            result.setInteger(wrapAdd(a, b));
            return true;
        case Operator::Subtract:
            result.setInteger(wrapSubtract(a, b));
            return true;
        case Operator::Multiply:
            result.setInteger(wrapMultiply(a, b));
            return true;
        case Operator::Divide:
            if (b <= 0) return false;
            result.setInteger(a / b);
            return true;
        case Operator::Modulo:
            if (b <= 0) return false;
            result.setInteger(a % b);
            return true;
        case Operator::Equal:
            result.setTruth(a == b);
            return true;
        case Operator::Unequal:
            result.setTruth(a != b);
            return true;
        case Operator::Less:
            result.setTruth(a < b);
            return true;
        case Operator::Greater:
            result.setTruth(a > b);
            return true;
        case Operator::LessOrEqual:
            result.setTruth(a <= b);
            return true;
        case Operator::GreaterOrEqual:
            result.setTruth(a >= b);
            return true;
        default:
            return false;
    }
}

/// Applies an operator to two values. Integers stay integers and wrap; a float makes a float; lists,
/// points, rects and colours are combined element by element. Throws `HostError` for unsupported types.
Value operate(Runtime& runtime, Operator operation, const Value& left, const Value& right);

Value negated(Runtime& runtime, const Value& value);

/// A number, or the number that a string holds; VOID is 0.
bool numberIn(const Value& value, Value& number, Heap& heap);
/// Rounds to the nearest integer, halves away from 0, as `integer` does.
int32_t rounded(double number);

}  // namespace krl::player
