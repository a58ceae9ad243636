#pragma once

#include <cstdint>
#include <limits>

/// The conversions that every effect's result depends on.
namespace krl {

/// `pi / 180` to double precision, the factor from degrees to radians.
inline constexpr double kRadiansPerDegree = 0.017453292519943295;

/// Float to integer, toward zero; `INT32_MIN` for NaN and for what does not fit. The only
/// conversion from floating point to integers, so that none is undefined.
constexpr int32_t truncate(double value) {
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return fits ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
}

/// `value` limited to `low..high`. NaN passes through, as both comparisons fail.
template <class Number>
constexpr Number clampTo(Number value, Number low, Number high) {
    return value < low ? low : value > high ? high : value;
}

/// An integer limited to 0..255.
constexpr uint8_t clampByte(int32_t value) { return static_cast<uint8_t>(clampTo(value, 0, 255)); }

/// A real limited to 0..255 and truncated; NaN gives 0, the low byte of `INT32_MIN`. Written as two
/// selections that NaN falls through, so that loops can be vectorised.
constexpr uint8_t truncatedByte(double value) {
    const double positive = value > 0.0 ? value : 0.0;
    return static_cast<uint8_t>(static_cast<int32_t>(positive < 255.0 ? positive : 255.0));
}

/// A real limited to 0..1.
constexpr double clampUnit(double value) { return clampTo(value, 0.0, 1.0); }

/// 32-bit arithmetic that wraps.
constexpr int32_t wrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t wrapSubtract(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t wrapMultiply(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

/// Ceiling of `count / parts`, with the quotient rounded to single precision first: the rule that divides
/// pixels, rows and columns into bands.
int32_t ceilingShare(int32_t count, int32_t parts);

}  // namespace krl
