#pragma once

#include "core/Numbers.h"
#include "player/lingo/Runtime.h"
#include "player/lingo/Syntax.h"

namespace krl::player {

/// Whether a value counts as true: any number that is not 0.
bool truthOf(const Value& value);

/// The short way for two integers; false for an operator that needs `operate`.
inline bool operateOnIntegers(Operator operation, int32_t a, int32_t b, Value& result) {
    switch (operation) {
        case Operator::Add:
            result = Value::integer(wrapAdd(a, b));
            return true;
        case Operator::Subtract:
            result = Value::integer(wrapSubtract(a, b));
            return true;
        case Operator::Multiply:
            result = Value::integer(wrapMultiply(a, b));
            return true;
        case Operator::Equal:
            result = Value::truth(a == b);
            return true;
        case Operator::Unequal:
            result = Value::truth(a != b);
            return true;
        case Operator::Less:
            result = Value::truth(a < b);
            return true;
        case Operator::Greater:
            result = Value::truth(a > b);
            return true;
        case Operator::LessOrEqual:
            result = Value::truth(a <= b);
            return true;
        case Operator::GreaterOrEqual:
            result = Value::truth(a >= b);
            return true;
        default:
            return false;
    }
}

/// What an operator makes of two values. Integers stay integers and wrap; a float makes a float;
/// lists, points, rects and colours are taken element by element. Throws `HostError` for values
/// that the operator does not know.
Value operate(Runtime& runtime, Operator operation, const Value& left, const Value& right);

Value negated(Runtime& runtime, const Value& value);

/// The number in a value, or the number that its text holds; VOID is 0.
bool numberIn(const Value& value, Value& number, Heap& heap);
/// A float as `integer` rounds it, to the nearest and halves away from 0.
int32_t rounded(double number);

}  // namespace krl::player
