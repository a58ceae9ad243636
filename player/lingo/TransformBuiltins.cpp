#include <cmath>
#include <numbers>
#include <utility>

#include "player/host/HostError.h"
#include "player/lingo/Transforms.h"

/// Transforms: what they are made of, and what changes them.
namespace krl::player {

namespace {

using Parts = std::array<double, 3>;

/// Rows are vectors; the last row is the position.
double at(const Matrix& matrix, size_t row, size_t column) { return matrix[row * 4 + column]; }

Parts rowOf(const Matrix& matrix, size_t row) {
    return {at(matrix, row, 0), at(matrix, row, 1), at(matrix, row, 2)};
}

Matrix withRow(Matrix matrix, size_t row, const Parts& parts) {
    std::copy(parts.begin(), parts.end(), matrix.begin() + static_cast<ptrdiff_t>(row * 4));
    return matrix;
}

Matrix moveBy(const Parts& by) { return withRow(kIdentity, 3, by); }

Matrix scaleBy(const Parts& by) {
    Matrix made = kIdentity;
    for (size_t i = 0; i < 3; ++i) made[i * 5] = by[i];
    return made;
}

/// By degrees around x, then y, then z.
Matrix turnBy(const Parts& degrees) {
    Matrix made = kIdentity;
    for (size_t axis = 0; axis < 3; ++axis) {
        const double angle = degrees[axis] * std::numbers::pi / 180;
        const size_t first = (axis + 1) % 3, second = (axis + 2) % 3;
        Matrix turn = kIdentity;
        turn[first * 5] = turn[second * 5] = std::cos(angle);
        turn[first * 4 + second] = std::sin(angle);
        turn[second * 4 + first] = -std::sin(angle);
        made = product(made, turn);
    }
    return made;
}

double lengthOf(const Parts& parts) { return std::hypot(parts[0], parts[1], parts[2]); }

Parts scaleOf(const Matrix& matrix) {
    return {lengthOf(rowOf(matrix, 0)), lengthOf(rowOf(matrix, 1)), lengthOf(rowOf(matrix, 2))};
}

Parts positionOf(const Matrix& matrix) { return rowOf(matrix, 3); }

Parts unitRow(const Matrix& matrix, size_t row) {
    Parts parts = rowOf(matrix, row);
    const double length = lengthOf(parts);
    for (double& part : parts) part = length == 0 ? 0 : part / length;
    return parts;
}

Parts rotationOf(const Matrix& matrix) {
    const Parts x = unitRow(matrix, 0), y = unitRow(matrix, 1), z = unitRow(matrix, 2);
    const Parts angles = {std::atan2(y[2], z[2]), std::asin(std::fmax(-1, std::fmin(1, 0 - x[2]))),
                          std::atan2(x[1], x[0])};
    return {angles[0] * 180 / std::numbers::pi, angles[1] * 180 / std::numbers::pi,
            angles[2] * 180 / std::numbers::pi};
}

Matrix composed(const Parts& scale, const Parts& rotation, const Parts& position) {
    return product(product(scaleBy(scale), turnBy(rotation)), moveBy(position));
}

/// By elimination with the largest pivot of each column.
Matrix inverseOf(Matrix matrix) {
    Matrix inverse = kIdentity;
    const auto eachColumn = [&](auto&& change) {
        for (size_t column = 0; column < 4; ++column) {
            change(matrix, column);
            change(inverse, column);
        }
    };
    for (size_t pivot = 0; pivot < 4; ++pivot) {
        size_t largest = pivot;
        for (size_t row = pivot; row < 4; ++row)
            if (std::fabs(at(matrix, row, pivot)) > std::fabs(at(matrix, largest, pivot))) largest = row;
        const double value = at(matrix, largest, pivot);
        if (value == 0) throw HostError("a transform that flattens space cannot be inverted");
        eachColumn([&](Matrix& of, size_t column) {
            std::swap(of[pivot * 4 + column], of[largest * 4 + column]);
            of[pivot * 4 + column] /= value;
        });
        for (size_t row = 0; row < 4; ++row) {
            const double factor = row == pivot ? 0 : at(matrix, row, pivot);
            eachColumn(
                [&](Matrix& of, size_t column) { of[row * 4 + column] -= factor * of[pivot * 4 + column]; });
        }
    }
    return inverse;
}

Matrix& matrixIn(const Arguments& arguments, size_t index) {
    return arguments.object<TransformObject>(index).matrix;
}

/// A vector, or three numbers.
Parts partsIn(const Arguments& arguments) {
    if (const auto* vector = arguments[1].as<VectorObject>()) return vector->parts;
    return {arguments.number(1), arguments.number(2), arguments.number(3)};
}

Value transform(Runtime& runtime, const Arguments&) { return runtime.heap.make<TransformObject>(kIdentity); }

Value identity(Runtime&, const Arguments& arguments) {
    matrixIn(arguments, 0) = kIdentity;
    return Value();
}

Value inverse(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.make<TransformObject>(inverseOf(matrixIn(arguments, 0)));
}

Value invert(Runtime&, const Arguments& arguments) {
    matrixIn(arguments, 0) = inverseOf(matrixIn(arguments, 0));
    return Value();
}

/// Applies a change after the transform, or before it.
template <Matrix (*kChange)(const Parts&), bool kBefore>
Value changed(Runtime&, const Arguments& arguments) {
    Matrix& matrix = matrixIn(arguments, 0);
    const Matrix change = kChange(partsIn(arguments));
    matrix = kBefore ? product(change, matrix) : product(matrix, change);
    return Value();
}

template <bool kBefore>
Value multiply(Runtime&, const Arguments& arguments) {
    Matrix& matrix = matrixIn(arguments, 0);
    const Matrix other = matrixIn(arguments, 1);
    matrix = kBefore ? product(other, matrix) : product(matrix, other);
    return Value();
}

/// `percent` of the way from one transform to another.
Value interpolate(Runtime& runtime, const Arguments& arguments) {
    const Matrix &from = matrixIn(arguments, 0), &to = matrixIn(arguments, 1);
    const double share = arguments.number(2) / 100;
    const auto between = [&](Parts (*part)(const Matrix&)) {
        Parts first = part(from);
        const Parts last = part(to);
        for (size_t i = 0; i < first.size(); ++i) first[i] += (last[i] - first[i]) * share;
        return first;
    };
    return runtime.heap.make<TransformObject>(
        composed(between(scaleOf), between(rotationOf), between(positionOf)));
}

constexpr Builtin kBuiltins[] = {
    {"transform", 0, 0, transform},
    {"identity", 1, 1, identity},
    {"inverse", 1, 1, inverse},
    {"invert", 1, 1, invert},
    {"translate", 2, 4, changed<moveBy, false>},
    {"preTranslate", 2, 4, changed<moveBy, true>},
    {"rotate", 2, 4, changed<turnBy, false>},
    {"preRotate", 2, 4, changed<turnBy, true>},
    {"scale", 2, 4, changed<scaleBy, false>},
    {"preScale", 2, 4, changed<scaleBy, true>},
    {"multiply", 2, 2, multiply<false>},
    {"preMultiply", 2, 2, multiply<true>},
    {"interpolate", 3, 3, interpolate},
};

template <Parts (*kPart)(const Matrix&)>
Value part(Runtime& runtime, const Value& object) {
    return runtime.heap.make<VectorObject>(kPart(object.as<TransformObject>()->matrix));
}

template <size_t kRow>
Parts axis(const Matrix& matrix) {
    return unitRow(matrix, kRow);
}

/// Replaces one part and keeps the others.
template <Parts (*kPart)(const Matrix&)>
void setPart(Runtime&, const Value& object, const Value& value) {
    const auto* vector = value.as<VectorObject>();
    if (!vector) throw HostError("expected a vector for a transform, not " + kindName(value.kind()));
    Matrix& matrix = object.as<TransformObject>()->matrix;
    const auto chosen = [&](Parts (*which)(const Matrix&)) {
        return which == kPart ? vector->parts : which(matrix);
    };
    matrix = composed(chosen(scaleOf), chosen(rotationOf), chosen(positionOf));
}

constexpr PropertyEntry kProperties[] = {
    {Kind::Transform, "position", part<positionOf>, setPart<positionOf>},
    {Kind::Transform, "rotation", part<rotationOf>, setPart<rotationOf>},
    {Kind::Transform, "scale", part<scaleOf>, setPart<scaleOf>},
    {Kind::Transform, "xAxis", part<axis<0>>, nullptr},
    {Kind::Transform, "yAxis", part<axis<1>>, nullptr},
    {Kind::Transform, "zAxis", part<axis<2>>, nullptr},
};

}  // namespace

Matrix product(const Matrix& a, const Matrix& b) {
    Matrix made{};
    for (size_t row = 0; row < 4; ++row)
        for (size_t column = 0; column < 4; ++column)
            for (size_t i = 0; i < 4; ++i) made[row * 4 + column] += at(a, row, i) * at(b, i, column);
    return made;
}

std::array<double, 3> transformed(const Matrix& matrix, const std::array<double, 3>& parts) {
    Parts made = positionOf(matrix);
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column) made[column] += parts[row] * at(matrix, row, column);
    return made;
}

std::span<const Builtin> transformBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> transformProperties() { return kProperties; }

}  // namespace krl::player
