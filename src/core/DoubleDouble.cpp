#include "core/DoubleDouble.h"

#include <limits>
#include <numbers>
#include <utility>

namespace krl {

namespace {

/// The natural logarithm of 2. The three are exact to 160 bits, for products with exponents.
constexpr double kLog2Parts[] = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56, 0x1.7b57a079a1934p-111};
/// 2 / (2 n + 1)
template <int n>
constexpr DoubleDouble kInverseOdd = DoubleDouble(2.0) / (2.0 * n + 1.0);
constexpr DoubleDouble kInverseLog10 = {0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57};

/// The sum of `r^n / n!` for n from 1.
template <int... n>
DoubleDouble beyondOneOf(DoubleDouble r, std::integer_sequence<int, n...>) {
    DoubleDouble sum = 0.0;
    ((sum = (sum + kInverseFactorial<sizeof...(n) - n>)*r), ...);
    return sum;
}

/// 2 artanh(t) / t of the square of t, which is at most 0.03.
template <int... n>
DoubleDouble hyperbolicSeries(DoubleDouble square, std::integer_sequence<int, n...>) {
    DoubleDouble sum = 0.0;
    ((sum = sum * square + kInverseOdd<sizeof...(n) - 1 - n>), ...);
    return sum;
}

/// `count` times the logarithm of 2.
DoubleDouble log2Times(double count) {
    return DoubleDouble::product(kLog2Parts[0], count) +
           (DoubleDouble::product(kLog2Parts[1], count) + kLog2Parts[2] * count);
}

}  // namespace

DoubleDouble exponential(DoubleDouble x) {
    if (!(x.high < 709.79)) return x.high > 0 ? std::numeric_limits<double>::infinity() : x.high;
    if (x.high < -745.2) return 0.0;
    const double doublings = std::floor(x.high * std::numbers::log2e + 0.5);
    constexpr int kHalvings = 8, kTerms = 9;
    const DoubleDouble rest = (x - log2Times(doublings)).scaled(-kHalvings);
    DoubleDouble beyondOne = beyondOneOf(rest, std::make_integer_sequence<int, kTerms>());
    // (1 + b)^2 = 1 + (2 b + b^2)
    for (int n = 0; n < kHalvings; ++n) beyondOne = beyondOne.scaled(1) + beyondOne * beyondOne;
    return (beyondOne + 1.0).scaled(static_cast<int>(doublings));
}

DoubleDouble logarithm(DoubleDouble x) {
    int doublings = 0;
    if (std::frexp(x.high, &doublings) < std::numbers::sqrt2 / 2) --doublings;
    const DoubleDouble near = x.scaled(-doublings);
    // log(v) = 2 artanh((v - 1) / (v + 1)), whose argument is at most 0.172
    const DoubleDouble t = (near - 1.0) / (near + 1.0), square = t * t;
    return log2Times(doublings) + t * hyperbolicSeries(square, std::make_integer_sequence<int, 23>());
}

DoubleDouble decimalLogarithm(DoubleDouble x) { return logarithm(x) * kInverseLog10; }

DoubleDouble power(DoubleDouble base, DoubleDouble exponent) {
    if (!(base.high > 0) || !std::isfinite(base.high) || !std::isfinite(exponent.high))
        return std::pow(base.high, exponent.high);  // nothing to round
    const DoubleDouble rest = logarithm(base);
    if (!(std::fabs(exponent.high * rest.high) < 1000))
        return exponent.high * rest.high > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return exponential(exponent * rest);
}

}  // namespace krl
