#include "warp/Trigonometry.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>

#include "core/Clones.h"

namespace krl {

namespace {

// Four angles at once, in the compilers' portable vector form.
using Reals [[gnu::vector_size(32)]] = double;
using Bits [[gnu::vector_size(32)]] = uint64_t;
constexpr size_t kLanes = 4;

constexpr double kPi = std::numbers::pi;

/// Added to a number of size below 2^51 it leaves the nearest whole number in the lowest bits.
constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52

// A quarter turn in three parts. The first two hold 33 bits, so that their products with the number of
// quarter turns of any angle that is reduced here are exact.
constexpr double kQuarterTop = 0x1.921fb544p+0;
constexpr double kQuarterMiddle = 0x1.0b4611a6p-34;
constexpr double kQuarterBottom = 0x1.3198a2e037073p-69;

/// The series of both around 0, after the angles have lost their quarter turns.
[[gnu::always_inline]] inline void reducedSineCosine(const Reals& angle, Reals& sine, Reals& cosine) {
    const Reals rounded = angle * (2 / kPi) + kRounder;
    const Reals quarters = rounded - kRounder;
    const Reals r =
        ((angle - quarters * kQuarterTop) - quarters * kQuarterMiddle) - quarters * kQuarterBottom;
    const Reals z = r * r;
    Reals s = z * (-1 / 1307674368000.0) + 1 / 6227020800.0;  // 1/15!, 1/13!
    s = s * z - 1 / 39916800.0;
    s = s * z + 1 / 362880.0;
    s = s * z - 1 / 5040.0;
    s = s * z + 1 / 120.0;
    s = s * z - 1 / 6.0;
    s = r + r * (z * s);
    Reals c = z * (1 / 20922789888000.0) - 1 / 87178291200.0;  // 1/16!, 1/14!
    c = c * z + 1 / 479001600.0;
    c = c * z - 1 / 3628800.0;
    c = c * z + 1 / 40320.0;
    c = c * z - 1 / 720.0;
    c = c * z + 1 / 24.0;
    c = 1 - (0.5 * z - z * z * c);
    // In odd quadrants the two change places; signs go by half turns.
    const Bits quadrant = __builtin_bit_cast(Bits, rounded), odd = -(quadrant & 1);
    const Bits sineBits = __builtin_bit_cast(Bits, s), cosineBits = __builtin_bit_cast(Bits, c);
    sine = __builtin_bit_cast(Reals, ((cosineBits & odd) | (sineBits & ~odd)) ^ ((quadrant & 2) << 62));
    cosine =
        __builtin_bit_cast(Reals, ((sineBits & odd) | (cosineBits & ~odd)) ^ (((quadrant + 1) & 2) << 62));
}

/// Size of the angle of (`x`, `y`) from the size of the coordinates and whether `x` is below 0.
[[gnu::always_inline]] inline void angleSize(const Reals& x, const Reals& y, Reals& size) {
    constexpr double kTanEighth = std::numbers::sqrt2 - 1;  // tangent of an eighth of a half turn
    constexpr uint64_t kSign = uint64_t{1} << 63;
    const Reals across = __builtin_bit_cast(Reals, __builtin_bit_cast(Bits, x) & ~kSign);
    const Reals height = __builtin_bit_cast(Reals, __builtin_bit_cast(Bits, y) & ~kSign);
    const Reals more = across > height ? across : height, less = across > height ? height : across;
    // Above an eighth of a half turn the angle is a quarter of one less what is missing to it.
    const auto upper = less > more * kTanEighth;
    const Reals numerator = upper ? less - more : less, sum = upper ? less + more : more;
    const Reals t = numerator / (sum == 0 ? sum + 1 : sum);
    const Reals z = t * t;
    Reals series = z * (-1.0 / 35) + 1.0 / 33;
    for (int odd = 31; odd >= 1; odd -= 2) series = 1.0 / odd - series * z;
    Reals angle = t * series;
    angle = upper ? angle + kPi / 4 : angle;
    angle = height > across ? kPi / 2 - angle : angle;
    size = x < 0 ? kPi - angle : angle;
}

/// Calls `perLanes(Lanes)` on every four of `count` numbers and, for those that are left, on four of which
/// they are the first.
template <class PerLanes>
[[gnu::always_inline]] inline void forEachLanes(size_t count, PerLanes&& perLanes) {
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) perLanes(i, kLanes);
    if (i < count) perLanes(i, count - i);
}

[[gnu::always_inline]] inline void load(const double* numbers, size_t count, Reals& lanes) {
    lanes = Reals{};
    if (count == kLanes)
        std::memcpy(&lanes, numbers, sizeof lanes);
    else
        std::memcpy(&lanes, numbers, count * sizeof(double));
}

[[gnu::always_inline]] inline void store(double* numbers, size_t count, const Reals& lanes) {
    if (count == kLanes)
        std::memcpy(numbers, &lanes, sizeof lanes);
    else
        std::memcpy(numbers, &lanes, count * sizeof(double));
}

KRL_WIDE_CLONES void reducedSinesAndCosines(const double* angles, double* sines, double* cosines,
                                            size_t count) {
    forEachLanes(
        count, [&](size_t i, size_t lanes) __attribute__((always_inline)) {
            Reals angle, s, c;
            load(angles + i, lanes, angle);
            reducedSineCosine(angle, s, c);
            store(sines + i, lanes, s);
            store(cosines + i, lanes, c);
        });
}

bool isReduced(double angle) { return std::fabs(angle) < kLargestAngle; }

}  // namespace

void sinesAndCosines(const double* angles, double* sines, double* cosines, size_t count) {
    bool reduced = true;
    for (size_t i = 0; i < count; ++i) reduced &= isReduced(angles[i]);
    if (reduced) return reducedSinesAndCosines(angles, sines, cosines, count);
    for (size_t i = 0; i < count; ++i) {
        sines[i] = sine(angles[i]);
        cosines[i] = cosine(angles[i]);
    }
}

KRL_WIDE_CLONES void angleSizes(const double* x, double y, double* angles, size_t count) {
    const Reals heights = {y, y, y, y};
    forEachLanes(
        count, [&](size_t i, size_t lanes) __attribute__((always_inline)) {
            Reals across, sizes;
            load(x + i, lanes, across);
            angleSize(across, heights, sizes);
            store(angles + i, lanes, sizes);
        });
}

double sine(double angle) {
    if (!isReduced(angle)) return std::sin(angle);
    double s, c;
    reducedSinesAndCosines(&angle, &s, &c, 1);
    return s;
}

double cosine(double angle) {
    if (!isReduced(angle)) return std::cos(angle);
    double s, c;
    reducedSinesAndCosines(&angle, &s, &c, 1);
    return c;
}

}  // namespace krl
