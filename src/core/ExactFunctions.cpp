#include "core/ExactFunctions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>

#include "core/DoubleDouble.h"

namespace krl {

namespace {

/// A quarter turn, and what it lacks.
constexpr DoubleDouble kQuarterTurn = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
constexpr double kQuarterRest = -0x1.f1976b7ed8fbcp-110;

/// 2 / pi, 32 bits each.
constexpr uint32_t kQuartersPerRadian[] = {
    0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041, 0xfe5163ab, 0xdebbc561,
    0xb7246e3a, 0x424dd2e0, 0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e, 0xe88235f5, 0x2ebb4484,
    0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4, 0x9c845f8b, 0xbdf9283b, 0x1ff897ff, 0xde05980f,
    0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d, 0x7527bac7, 0xebe5f17b,
    0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046, 0xfc7b6bab};

/// An angle without its quarter turns, within half a quarter turn of 0, and their number modulo 4.
struct ReducedAngle {
    DoubleDouble rest;
    uint32_t quarters = 0;
};

/// For sizes up to 2^20.
ReducedAngle reducedSmall(double size) {
    const double quarters = std::floor(size * (2 / std::numbers::pi) + 0.5);
    const DoubleDouble rest = (size - DoubleDouble::product(kQuarterTurn.high, quarters)) -
                              DoubleDouble::product(kQuarterTurn.low, quarters) - kQuarterRest * quarters;
    return {rest, static_cast<uint32_t>(quarters) & 3};
}

/// For sizes from 0.5. Only the bits of 2 / pi are multiplied that lie where the product has neither whole
/// turns nor less than the result can hold (M. Payne, R. Hanek, "Radian reduction for trigonometric
/// functions", 1983).
ReducedAngle reduced(double size) {
    constexpr int kWords = 8, kLimbs = kWords + 2;
    int exponent = 0;
    const auto digits = static_cast<uint64_t>(std::ldexp(std::frexp(size, &exponent), 53));
    exponent -= 53;
    const int first = exponent < 2 ? 0 : (exponent - 2) / 32;
    // limbs[0] is the lowest; the number of quarters is the limbs over 2^fraction
    std::array<uint32_t, kLimbs> limbs{};
    for (int half = 0; half < 2; ++half) {
        const uint64_t factor = half == 0 ? digits & 0xFFFFFFFF : digits >> 32;
        uint64_t carry = 0;
        for (int i = 0; i < kWords; ++i) {
            uint32_t& limb = limbs[static_cast<size_t>(i + half)];
            carry += factor * kQuartersPerRadian[first + kWords - 1 - i] + limb;
            limb = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        limbs[static_cast<size_t>(kWords + half)] = static_cast<uint32_t>(carry);
    }
    const int fraction = 32 * (first + kWords) - exponent;
    const auto bit = [&](int place) { return limbs[static_cast<size_t>(place / 32)] >> (place % 32) & 1; };
    ReducedAngle angle;
    angle.quarters = bit(fraction) | bit(fraction + 1) << 1;
    const bool isPastHalf = bit(fraction - 1) != 0;
    // What lies below the point, from the highest limb on; past a half, what is missing to the next quarter.
    for (int i = (fraction - 1) / 32; i >= 0; --i) {
        uint32_t limb = isPastHalf ? ~limbs[static_cast<size_t>(i)] : limbs[static_cast<size_t>(i)];
        if (const int above = fraction - 32 * i; above < 32) limb &= (uint32_t{1} << above) - 1;
        angle.rest = angle.rest + std::ldexp(double(limb), 32 * i - fraction);
    }
    if (isPastHalf) {
        angle.rest = -angle.rest;
        angle.quarters = (angle.quarters + 1) & 3;
    }
    angle.rest = angle.rest * kQuarterTurn;
    return angle;
}

/// The sum of (-1)^n square^n / (2 n + first)! for n from 0, for a square up to 0.62. What the last terms
/// lack in digits, they lack in size.
template <int first, int... n>
DoubleDouble alternatingSeries(DoubleDouble square, std::integer_sequence<int, n...>) {
    constexpr int kTerms = 7, kLast = kTerms + static_cast<int>(sizeof...(n)) - 1;
    double tail = 0;
    ((tail = kInverseFactorial<2 * (kLast - n) + first>.high - tail * square.high), ...);
    const auto sum = [&]<int... m>(DoubleDouble start, std::integer_sequence<int, m...>) {
        ((start = kInverseFactorial<2 * (kTerms - 1 - m) + first> - start * square), ...);
        return start;
    };
    return sum(tail, std::make_integer_sequence<int, kTerms>());
}
DoubleDouble smallSine(DoubleDouble r) {
    return r * alternatingSeries<1>(r * r, std::make_integer_sequence<int, 7>());
}
DoubleDouble smallCosine(DoubleDouble r) {
    return alternatingSeries<0>(r * r, std::make_integer_sequence<int, 8>());
}

/// The sine of an angle and so many quarter turns more.
double sineOf(double angle, uint32_t more) {
    if (!std::isfinite(angle)) return angle - angle;
    const double size = std::fabs(angle);
    ReducedAngle reducedAngle{size, 0};
    if (size >= 0.5) reducedAngle = size < 0x1p20 ? reducedSmall(size) : reduced(size);
    if (angle < 0) reducedAngle = {-reducedAngle.rest, (4 - reducedAngle.quarters) & 3};
    const uint32_t quarters = (reducedAngle.quarters + more) & 3;
    const DoubleDouble sine = quarters & 1 ? smallCosine(reducedAngle.rest) : smallSine(reducedAngle.rest);
    return quarters & 2 ? -sine.high : sine.high;
}

/// 1 / (2 n + 1)
constexpr auto kInverseOdd = [] {
    std::array<double, 21> inverse{};
    for (size_t n = 0; n < inverse.size(); ++n) inverse[n] = 1.0 / static_cast<double>(2 * n + 1);
    return inverse;
}();

/// The angle whose tangent is `t`, 0 to 1, to some 50 bits.
double roughAngleOf(double t) {
    constexpr double kTanEighth = 0.41421356237309503;
    const bool isUpper = t > kTanEighth;
    if (isUpper) t = (t - 1) / (t + 1);
    double sum = 0;
    for (size_t n = kInverseOdd.size(); n-- > 0;) sum = kInverseOdd[n] - sum * (t * t);
    return t * sum + (isUpper ? kQuarterTurn.high / 2 : 0.0);
}

}  // namespace

double exactSine(double angle) { return angle == 0 ? angle : sineOf(angle, 0); }
double exactCosine(double angle) { return sineOf(angle, 1); }

double exactAngle(double y, double x) {
    const double across = std::fabs(x), height = std::fabs(y);
    const double longer = std::max(across, height), shorter = std::min(across, height);
    if (!std::isfinite(x) || !std::isfinite(y) || longer == 0) return std::atan2(y, x);
    int exponent = 0;
    std::frexp(longer, &exponent);
    const double b = std::ldexp(longer, -exponent), a = std::ldexp(shorter, -exponent);
    // One step of Newton's from the rough angle: the sine of what is missing is what is missing.
    const double rough = roughAngleOf(a / b);
    const DoubleDouble sine = smallSine(rough), cosine = smallCosine(rough);
    DoubleDouble angle = (cosine * a - sine * b) / (cosine * b + sine * a) + rough;
    if (height > across) angle = kQuarterTurn - angle;
    if (std::signbit(x)) angle = kQuarterTurn.scaled(1) - angle;
    return std::copysign(angle.high, y);
}

double exactExponential(double x) { return x == 0 ? 1.0 : exponential(x).high; }

double exactLogarithm(double x) {
    return x > 0 && std::isfinite(x) ? logarithm(x).high : std::log(x);  // nothing to round
}

double exactPower(double base, double exponent) { return power(base, exponent).high; }

double exactLength(double x, double y) {
    const DoubleDouble square = DoubleDouble::product(x, x) + DoubleDouble::product(y, y);
    const double root = std::sqrt(square.high);
    if (root == 0 || !std::isfinite(root)) return root;
    return (DoubleDouble(root) + (square - DoubleDouble::product(root, root)) / (2 * root)).high;
}

double roughExponential(double x) {
    constexpr double kTop = 0x1.62e42fee00000p-1, kRest = 0x1.a39ef35793c76p-33;  // the logarithm of 2
    const double doublings = std::floor(x * std::numbers::log2e + 0.5);
    const double r = (x - doublings * kTop) - doublings * kRest;
    double sum = 1;
    for (int n = 14; n >= 1; --n) sum = 1 + sum * r / n;
    return std::ldexp(sum, static_cast<int>(doublings));
}

double roughLogarithm(double x) {
    int doublings = 0;
    double near = std::frexp(x, &doublings);
    if (near < std::numbers::sqrt2 / 2) {
        near *= 2;
        --doublings;
    }
    const double t = (near - 1) / (near + 1), square = t * t;
    double sum = 0;
    for (size_t n = 13; n-- > 0;) sum = sum * square + kInverseOdd[n];
    return 2 * t * sum + doublings * std::numbers::ln2;
}

}  // namespace krl
