#include <cmath>
#include <numbers>

#include "player/host/HostError.h"
#include "player/lingo/Runtime.h"

/// Vectors of three numbers.
namespace krl::player {

namespace {

using Parts = std::array<double, 3>;

const Parts& partsOf(const Arguments& arguments, size_t index) {
    return arguments.object<VectorObject>(index).parts;
}

double product(const Parts& a, const Parts& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Parts unit(const Parts& parts) {
    const double length = std::sqrt(product(parts, parts));
    return length == 0 ? parts : Parts{parts[0] / length, parts[1] / length, parts[2] / length};
}

Value vector(Runtime& runtime, const Arguments& arguments) {
    Parts parts{};
    for (size_t i = 0; i < arguments.count(); ++i) parts[i] = arguments.number(i);
    return runtime.heap.make<VectorObject>(parts);
}

Value dot(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.number(product(partsOf(arguments, 0), partsOf(arguments, 1)));
}

Value cross(Runtime& runtime, const Arguments& arguments) {
    const Parts &a = partsOf(arguments, 0), &b = partsOf(arguments, 1);
    return runtime.heap.make<VectorObject>(
        Parts{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]});
}

Value normalized(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.make<VectorObject>(unit(partsOf(arguments, 0)));
}

Value normalize(Runtime&, const Arguments& arguments) {
    auto& vector = arguments.object<VectorObject>(0);
    vector.parts = unit(vector.parts);
    return Value();
}

/// In degrees.
Value angleBetween(Runtime& runtime, const Arguments& arguments) {
    const double cosine = product(unit(partsOf(arguments, 0)), unit(partsOf(arguments, 1)));
    return runtime.heap.number(std::acos(std::fmax(-1, std::fmin(1, cosine))) * 180 / std::numbers::pi);
}

Value distanceTo(Runtime& runtime, const Arguments& arguments) {
    const Parts &a = partsOf(arguments, 0), &b = partsOf(arguments, 1);
    const Parts between = {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    return runtime.heap.number(std::sqrt(product(between, between)));
}

constexpr Builtin kBuiltins[] = {
    {"vector", 0, 3, vector},         {"dot", 2, 2, dot},
    {"dotProduct", 2, 2, dot},        {"cross", 2, 2, cross},
    {"crossProduct", 2, 2, cross},    {"getNormalized", 1, 1, normalized},
    {"normalize", 1, 1, normalize},   {"angleBetween", 2, 2, angleBetween},
    {"distanceTo", 2, 2, distanceTo},
};

template <size_t Index>
Value part(Runtime& runtime, const Value& object) {
    return runtime.heap.number(object.as<VectorObject>()->parts[Index]);
}

template <size_t Index>
void setPart(Runtime&, const Value& object, const Value& value) {
    if (!value.isNumber()) throw HostError("expected a number for a vector, not " + kindName(value.kind()));
    object.as<VectorObject>()->parts[Index] = value.number();
}

Value magnitude(Runtime& runtime, const Value& object) {
    const Parts& parts = object.as<VectorObject>()->parts;
    return runtime.heap.number(std::sqrt(product(parts, parts)));
}

constexpr PropertyEntry kProperties[] = {
    {Kind::Vector, "x", part<0>, setPart<0>},     {Kind::Vector, "y", part<1>, setPart<1>},
    {Kind::Vector, "z", part<2>, setPart<2>},     {Kind::Vector, "magnitude", magnitude, nullptr},
    {Kind::Vector, "length", magnitude, nullptr},
};

}  // namespace

std::span<const Builtin> vectorBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> vectorProperties() { return kProperties; }

}  // namespace krl::player
