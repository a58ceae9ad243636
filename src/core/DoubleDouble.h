#pragma once

#include <cmath>

/// Numbers of twice a double's digits, for results that must not depend on how a machine or its C library
/// rounds (T. J. Dekker, "A floating-point technique for extending the available precision", 1971).
namespace krl {

/// The unevaluated sum of two doubles, the second at most half a unit in the last place of the first: so the
/// first is the whole, rounded.
struct DoubleDouble {
    double high = 0, low = 0;

    constexpr DoubleDouble() = default;
    constexpr DoubleDouble(double value) : high(value) {}
    constexpr DoubleDouble(double first, double second) : high(first), low(second) {}

    /// `a + b`, for a size of `a` not below that of `b`.
    static constexpr DoubleDouble ordered(double a, double b) {
        const double sum = a + b;
        return {sum, b - (sum - a)};
    }
    /// `a + b`, exactly.
    static constexpr DoubleDouble sum(double a, double b) {
        const double sum = a + b, part = sum - a;
        return {sum, (a - (sum - part)) + (b - part)};
    }
    /// `a * b`, exactly, for sizes below 2^990.
    static constexpr DoubleDouble product(double a, double b) {
        const double product = a * b;
        const auto top = [](double v) {
            const double spread = v * 134217729.0;  // 2^27 + 1
            return spread - (spread - v);
        };
        const double aTop = top(a), aRest = a - aTop, bTop = top(b), bRest = b - bTop;
        return {product, ((aTop * bTop - product) + aTop * bRest + aRest * bTop) + aRest * bRest};
    }

    friend constexpr DoubleDouble operator+(DoubleDouble a, DoubleDouble b) {
        const DoubleDouble upper = sum(a.high, b.high), lower = sum(a.low, b.low);
        const DoubleDouble carried = ordered(upper.high, upper.low + lower.high);
        return ordered(carried.high, carried.low + lower.low);
    }
    friend constexpr DoubleDouble operator-(DoubleDouble a) { return {-a.high, -a.low}; }
    friend constexpr DoubleDouble operator-(DoubleDouble a, DoubleDouble b) { return a + -b; }
    friend constexpr DoubleDouble operator*(DoubleDouble a, DoubleDouble b) {
        const DoubleDouble upper = product(a.high, b.high);
        return ordered(upper.high, upper.low + (a.high * b.low + a.low * b.high));
    }
    friend constexpr DoubleDouble operator/(DoubleDouble a, DoubleDouble b) {
        const double first = a.high / b.high;
        const DoubleDouble rest = a - b * first;
        const double second = rest.high / b.high;
        const double third = (rest - b * second).high / b.high;
        return ordered(first, second) + third;
    }
    friend constexpr bool operator<(DoubleDouble a, DoubleDouble b) {
        return a.high < b.high || (a.high == b.high && a.low < b.low);
    }
    friend constexpr bool operator>(DoubleDouble a, DoubleDouble b) { return b < a; }
    /// Times a power of two.
    DoubleDouble scaled(int exponent) const {
        return {std::ldexp(high, exponent), std::ldexp(low, exponent)};
    }
};

/// 1 / n!
template <int n>
inline constexpr DoubleDouble kInverseFactorial = kInverseFactorial<n - 1> / double(n);
template <>
inline constexpr DoubleDouble kInverseFactorial<0> = 1.0;

/// Powers of e and natural logarithms, right to about 29 digits. Of a logarithm the argument is above 0.
DoubleDouble exponential(DoubleDouble x);
DoubleDouble logarithm(DoubleDouble x);
DoubleDouble decimalLogarithm(DoubleDouble x);
/// `base` to the power of `exponent`; `base` is not below 0.
DoubleDouble power(DoubleDouble base, DoubleDouble exponent);

}  // namespace krl
