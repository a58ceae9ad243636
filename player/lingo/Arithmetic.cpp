#include "player/lingo/Arithmetic.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Transforms.h"

namespace krl::player {

namespace {

constexpr const char* kSigns[] = {"+",      "-",          "*",      "/",   "mod", "&",  "&&",
                                  "=",      "<>",         "<",      ">",   "<=",  ">=", "contains",
                                  "starts", "intersects", "within", "and", "or"};

const char* signOf(Operator operation) { return kSigns[static_cast<size_t>(operation)]; }

Value integers(Operator operation, int32_t a, int32_t b) {
    Value result;
    if (operateOnIntegers(operation, a, b, result)) return result;
    if (b == 0) throw HostError("an integer cannot be divided by zero");
    // The only quotient that overflows wraps, like all integer arithmetic.
    const bool divide = operation == Operator::Divide;
    if (b == -1) return Value::integer(divide ? wrapSubtract(0, a) : 0);
    return Value::integer(divide ? a / b : a % b);
}

double reals(Operator operation, double a, double b) {
    switch (operation) {
        case Operator::Add:
            return a + b;
        case Operator::Subtract:
            return a - b;
        case Operator::Multiply:
            return a * b;
        case Operator::Divide:
            return a / b;
        default:
            return std::fmod(a, b);
    }
}

uint8_t channel(Operator operation, int a, int b) {
    switch (operation) {
        case Operator::Add:
            return clampByte(a + b);
        case Operator::Subtract:
            return clampByte(a - b);
        default:
            return clampByte(a * b);
    }
}

bool isSequence(const Value& value) {
    return value.is(Kind::List) || value.is(Kind::Point) || value.is(Kind::Rect);
}

/// The elements of a list, point or rect; any other value is one element, combined with all of the others.
std::span<const Value> elements(const Value& value) {
    if (const auto* list = value.as<ListObject>()) return list->items;
    if (const auto* point = value.as<PointObject>()) return point->values;
    if (const auto* rect = value.as<RectObject>()) return rect->values;
    return {&value, 1};
}

class Calculation {
public:
    Calculation(Runtime& runtime, Operator operation) : runtime_(runtime), operation_(operation) {}

    Value of(const Value& a, const Value& b, int depth = 0) const {
        if (depth > kDeepestNesting) throw HostError("the lists in this calculation are nested too deeply");
        if (isSequence(a) || isSequence(b)) return ofSequences(a, b, depth);
        if (a.is(Kind::Colour) && (b.is(Kind::Colour) || b.isInteger()) && operation_ <= Operator::Multiply)
            return ofColours(a.colour(), b);
        if (a.is(Kind::Transform) && operation_ == Operator::Multiply) return ofTransform(a, b);
        if (a.is(Kind::Vector) || b.is(Kind::Vector)) return ofVectors(a, b);
        if (a.is(Kind::Date)) return ofDates(a, b);
        Value first, second;
        if (!numberIn(a, first, runtime_.heap) || !numberIn(b, second, runtime_.heap)) refuse(a, b);
        if (first.isInteger() && second.isInteger())
            return integers(operation_, first.integer(), second.integer());
        return runtime_.heap.number(reals(operation_, first.number(), second.number()));
    }

private:
    [[noreturn]] void refuse(const Value& a, const Value& b) const {
        throw HostError(std::string("expected numbers on both sides of \"") + signOf(operation_) +
                        "\", not " + kindName(a.kind()) + " and " + kindName(b.kind()));
    }

    /// Part by part; the product of two vectors is one number.
    Value ofVectors(const Value& a, const Value& b) const {
        using Parts = std::array<double, 3>;
        const auto parts = [&](const Value& value) {
            if (const auto* vector = value.as<VectorObject>()) return vector->parts;
            if (!value.isNumber()) refuse(a, b);
            return Parts{value.number(), value.number(), value.number()};
        };
        const Parts first = parts(a), second = parts(b);
        Parts results;
        for (size_t i = 0; i < results.size(); ++i) results[i] = reals(operation_, first[i], second[i]);
        const bool dot = operation_ == Operator::Multiply && a.is(Kind::Vector) && b.is(Kind::Vector);
        if (dot) return runtime_.heap.number(results[0] + results[1] + results[2]);
        return runtime_.heap.make<VectorObject>(results);
    }

    /// A transform followed by another one, or a vector that it moves.
    Value ofTransform(const Value& a, const Value& b) const {
        const Matrix& matrix = a.as<TransformObject>()->matrix;
        if (const auto* other = b.as<TransformObject>())
            return runtime_.heap.make<TransformObject>(product(matrix, other->matrix));
        const auto* vector = b.as<VectorObject>();
        if (!vector) refuse(a, b);
        return runtime_.heap.make<VectorObject>(transformed(matrix, vector->parts));
    }

    /// A date some days later or earlier, or the days between two.
    Value ofDates(const Value& a, const Value& b) const {
        const auto& date = *a.as<DateObject>();
        const auto* other = b.as<DateObject>();
        const bool minus = operation_ == Operator::Subtract;
        if (other && minus) return Value::integer(static_cast<int32_t>(dayOf(date) - dayOf(*other)));
        if (!b.isInteger() || (!minus && operation_ != Operator::Add)) refuse(a, b);
        const int64_t day = dayOf(date) + (minus ? -int64_t{b.integer()} : b.integer());
        mustBeNear(day);
        const std::chrono::year_month_day moved = std::chrono::sys_days(std::chrono::days(day));
        return runtime_.heap.make<DateObject>(int{moved.year()},
                                              static_cast<int32_t>(unsigned{moved.month()}),
                                              static_cast<int32_t>(unsigned{moved.day()}), date.seconds);
    }

    /// The days since the beginning of 1970.
    static int64_t dayOf(const DateObject& date) {
        if (date.month < 1 || date.month > 12)
            throw HostError("expected a month from 1 to 12, not " + std::to_string(date.month));
        mustBeNear(int64_t{date.year} * 365);
        const auto month = std::chrono::year(date.year) / static_cast<int>(date.month);
        const int64_t day = std::chrono::sys_days(month / 1).time_since_epoch().count() + date.day - 1;
        mustBeNear(day);
        return day;
    }

    static void mustBeNear(int64_t day) {
        if (std::abs(day) > 3'000'000) throw HostError("expected a date of a year from -5000 to 5000");
    }

    Value ofColours(Colour a, const Value& other) const {
        const auto factor = static_cast<uint8_t>(clampTo(other.integer(), 0, 255));
        const Colour b = other.isInteger() ? Colour(factor, factor, factor) : other.colour();
        return Value::colour(Colour(channel(operation_, a.red(), b.red()),
                                    channel(operation_, a.green(), b.green()),
                                    channel(operation_, a.blue(), b.blue())));
    }

    /// As long as the shorter operand; the left one determines the type if it is a sequence.
    Value ofSequences(const Value& a, const Value& b, int depth) const {
        if (a.is(Kind::PropertyList) || b.is(Kind::PropertyList)) refuse(a, b);
        const std::span<const Value> first = elements(a), second = elements(b);
        const bool both = isSequence(a) && isSequence(b);
        const size_t one = isSequence(a) ? first.size() : second.size();
        const size_t count = both ? std::min(first.size(), second.size()) : one;
        std::vector<Value> results;
        results.reserve(count);
        for (size_t i = 0; i < count; ++i)
            results.push_back(of(first[isSequence(a) ? i : 0], second[isSequence(b) ? i : 0], depth + 1));
        return shaped(isSequence(a) ? a : b, std::move(results));
    }

    /// Points and rects hold only numbers: with any other element, the result is a list.
    Value shaped(const Value& like, std::vector<Value> results) const {
        const bool numbers =
            std::all_of(results.begin(), results.end(), [](const Value& one) { return one.isNumber(); });
        if (numbers && like.is(Kind::Point) && results.size() == 2)
            return runtime_.heap.make<PointObject>(std::array<Value, 2>{results[0], results[1]});
        if (numbers && like.is(Kind::Rect) && results.size() == 4)
            return runtime_.heap.make<RectObject>(
                std::array<Value, 4>{results[0], results[1], results[2], results[3]});
        Value list = runtime_.heap.make<ListObject>();
        list.as<ListObject>()->items = std::move(results);
        runtime_.heap.recount(*list.as<ListObject>());
        return list;
    }

    Runtime& runtime_;
    Operator operation_;
};

bool holds(Runtime& runtime, Operator operation, const Value& a, const Value& b) {
    const auto isNotANumber = [](const Value& value) {
        return value.is(Kind::Float) && std::isnan(value.number());
    };
    switch (operation) {
        case Operator::Equal:
            return equal(runtime.symbols, a, b);
        case Operator::Unequal:
            return !equal(runtime.symbols, a, b);
        default:
            break;
    }
    if (isNotANumber(a) || isNotANumber(b)) return false;
    const int order = compare(runtime.symbols, a, b);
    switch (operation) {
        case Operator::Less:
            return order < 0;
        case Operator::Greater:
            return order > 0;
        case Operator::LessOrEqual:
            return order <= 0;
        default:
            return order >= 0;
    }
}

}  // namespace

int32_t rounded(double number) { return truncate(std::round(number)); }

bool truthOf(const Value& value) {
    if (value.isInteger()) return value.integer() != 0;
    if (value.is(Kind::Float)) return value.number() != 0;
    if (value.isVoid()) return false;
    double number = 0;
    if (value.is(Kind::String)) return readNumber(value.as<StringObject>()->text, number) && number != 0;
    return true;
}

bool numberIn(const Value& value, Value& number, Heap& heap) {
    if (value.isNumber()) {
        number = value;
        return true;
    }
    if (value.isVoid()) {
        number = Value::integer(0);
        return true;
    }
    double real = 0;
    if (!value.is(Kind::String) || !readNumber(value.as<StringObject>()->text, real)) return false;
    const bool whole = value.as<StringObject>()->text.find_first_of(".eE") == std::string::npos;
    const bool fits = std::abs(real) <= std::numeric_limits<int32_t>::max();
    number = whole && fits ? Value::integer(truncate(real)) : heap.number(real);
    return true;
}

Value operate(Runtime& runtime, Operator operation, const Value& left, const Value& right) {
    switch (operation) {
        case Operator::And:
            return Value::truth(truthOf(left) && truthOf(right));
        case Operator::Or:
            return Value::truth(truthOf(left) || truthOf(right));
        case Operator::Concatenate:
        case Operator::ConcatenateSpaced: {
            const std::string first = runtime.plain(left), second = runtime.plain(right);
            runtime.heap.mustHold(first.size() + second.size() + 1);
            return runtime.text(first + (operation == Operator::Concatenate ? "" : " ") + second);
        }
        case Operator::Contains:
        case Operator::Starts: {
            const std::string whole = folded(runtime.plain(left)), part = folded(runtime.plain(right));
            const size_t found = whole.find(part);
            return Value::truth(operation == Operator::Starts ? found == 0 : found != std::string::npos);
        }
        case Operator::Intersects:
        case Operator::Within:
            throw HostError(std::string("\"") + signOf(operation) +
                            "\" compares sprites, which need a stage");
        case Operator::Add:
        case Operator::Subtract:
        case Operator::Multiply:
        case Operator::Divide:
        case Operator::Modulo:
            if (left.isInteger() && right.isInteger())
                return integers(operation, left.integer(), right.integer());
            return Calculation(runtime, operation).of(left, right);
        default:
            return Value::truth(holds(runtime, operation, left, right));
    }
}

Value negated(Runtime& runtime, const Value& value) {
    if (value.isInteger()) return Value::integer(wrapSubtract(0, value.integer()));
    if (value.is(Kind::Float)) return runtime.heap.number(-value.number());
    return operate(runtime, Operator::Subtract, Value::integer(0), value);
}

}  // namespace krl::player
