#include <cmath>
#include <numbers>

#include "core/Numbers.h"
#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"

/// Numeric functions such as `abs`, `sqrt` and `random`, and conversions to numbers.
namespace krl::player {

namespace {

/// A number, also one in a string.
double realOf(Runtime& runtime, const Arguments& arguments, size_t index) {
    Value number;
    if (!arguments.has(index) || !numberIn(arguments[index], number, runtime.heap))
        arguments.mismatch(index, "a number");
    return number.number();
}

template <double (*Function)(double)>
Value ofReal(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.number(Function(realOf(runtime, arguments, 0)));
}

Value absolute(Runtime& runtime, const Arguments& arguments) {
    const int32_t whole = arguments[0].isInteger() ? arguments[0].integer() : 0;
    if (arguments[0].isInteger()) return Value::integer(whole < 0 ? wrapSubtract(0, whole) : whole);
    return runtime.heap.number(std::fabs(arguments.number(0)));
}

/// The root of a non-negative integer is rounded to an integer.
Value squareRoot(Runtime& runtime, const Arguments& arguments) {
    const double root = std::sqrt(realOf(runtime, arguments, 0));
    const bool whole = arguments[0].isInteger() && !std::isnan(root);
    return whole ? Value::integer(rounded(root)) : runtime.heap.number(root);
}

Value arcTangent(Runtime& runtime, const Arguments& arguments) {
    const double y = arguments.number(0);
    return runtime.heap.number(arguments.has(1) ? std::atan2(y, arguments.number(1)) : std::atan(y));
}

Value power(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.number(std::pow(arguments.number(0), arguments.number(1)));
}

Value toInteger(Runtime& runtime, const Arguments& arguments) {
    Value number;
    if (arguments[0].isVoid() || !numberIn(arguments[0], number, runtime.heap)) return Value();
    return number.isInteger() ? number : Value::integer(rounded(number.number()));
}

Value toFloat(Runtime& runtime, const Arguments& arguments) {
    Value number;
    if (arguments[0].isVoid() || !numberIn(arguments[0], number, runtime.heap)) return Value();
    return runtime.heap.number(number.number());
}

Value random(Runtime& runtime, const Arguments& arguments) {
    const int32_t most = arguments.integer(0);
    if (most < 1) throw HostError("random: expected a number of at least 1, not " + std::to_string(most));
    return Value::integer(1 + static_cast<int32_t>(runtime.nextRandom() % static_cast<uint32_t>(most)));
}

/// The extreme of the arguments, or of the elements of a single list, by `Order`.
template <int Order>
Value extreme(Runtime& runtime, const Arguments& arguments) {
    std::span<const Value> values = arguments.from(0);
    std::vector<Value> held;
    if (const auto* list = arguments[0].as<ListObject>()) {
        values = list->items;
    } else if (const auto* properties = arguments[0].as<PropertyListObject>()) {
        for (const auto& entry : properties->entries) held.push_back(entry.value);
        values = held;
    }
    if (values.empty()) return Value::integer(0);
    const Value* found = &values.front();
    for (const Value& value : values)
        if (compare(runtime.symbols, value, *found) * Order > 0) found = &value;
    return *found;
}

/// Bits are taken from the whole part of a number.
int32_t bitsOf(const Arguments& arguments, size_t index) {
    return arguments[index].is(Kind::Float) ? truncate(arguments.number(index)) : arguments.integer(index);
}

template <class Operation>
Value ofBits(const Arguments& arguments, Operation operation) {
    return Value::integer(operation(bitsOf(arguments, 0), bitsOf(arguments, 1)));
}

constexpr Builtin kBuiltins[] = {
    {"abs", 1, 1, absolute},
    {"sqrt", 1, 1, squareRoot},
    {"sin", 1, 1, ofReal<std::sin>},
    {"cos", 1, 1, ofReal<std::cos>},
    {"tan", 1, 1, ofReal<std::tan>},
    {"exp", 1, 1, ofReal<std::exp>},
    {"log", 1, 1, ofReal<std::log>},
    {"atan", 1, 2, arcTangent},
    {"power", 2, 2, power},
    {"integer", 1, 1, toInteger},
    {"float", 1, 1, toFloat},
    {"random", 1, 1, random},
    {"max", 1, kAnyNumber, extreme<1>},
    {"min", 1, kAnyNumber, extreme<-1>},
    {"pi", 0, 0, [](Runtime& r, const Arguments&) { return r.heap.number(std::numbers::pi); }},
    {"bitAnd", 2, 2, [](Runtime&, const Arguments& a) { return ofBits(a, std::bit_and<int32_t>()); }},
    {"bitOr", 2, 2, [](Runtime&, const Arguments& a) { return ofBits(a, std::bit_or<int32_t>()); }},
    {"bitXor", 2, 2, [](Runtime&, const Arguments& a) { return ofBits(a, std::bit_xor<int32_t>()); }},
    {"bitNot", 1, 1, [](Runtime&, const Arguments& a) { return Value::integer(~bitsOf(a, 0)); }},
};

}  // namespace

std::span<const Builtin> mathBuiltins() { return kBuiltins; }

}  // namespace krl::player
