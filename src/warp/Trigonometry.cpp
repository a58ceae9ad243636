#include "warp/Trigonometry.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>

namespace krl {

namespace {

// Two angles at once, in the compilers' portable vector form; the steps of one angle take as long.
using Reals [[gnu::vector_size(16)]] = double;
using Bits [[gnu::vector_size(16)]] = uint64_t;
constexpr size_t kLanes = 2;

constexpr double kPi = std::numbers::pi;

/// Added to a number of size below 2^51 it leaves the nearest whole number in the lowest bits.
constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52

// A quarter turn in three parts. The first two hold 33 bits, so that their products with the number of
// quarter turns of any angle that is reduced here are exact.
constexpr double kQuarterTop = 0x1.921fb544p+0;
constexpr double kQuarterMiddle = 0x1.0b4611a6p-34;
constexpr double kQuarterBottom = 0x1.3198a2e037073p-69;

struct SineCosine {
    Reals sine, cosine;
};

/// The series of both around 0, after the angles have lost their quarter turns.
SineCosine reducedSineCosine(Reals angle) {
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
    const Bits quadrant = std::bit_cast<Bits>(rounded), odd = -(quadrant & 1);
    const Bits sineBits = std::bit_cast<Bits>(s), cosineBits = std::bit_cast<Bits>(c);
    const Bits sine = ((cosineBits & odd) | (sineBits & ~odd)) ^ ((quadrant & 2) << 62);
    const Bits cosine = ((sineBits & odd) | (cosineBits & ~odd)) ^ (((quadrant + 1) & 2) << 62);
    return {std::bit_cast<Reals>(sine), std::bit_cast<Reals>(cosine)};
}

Reals absolute(Reals x) { return std::bit_cast<Reals>(std::bit_cast<Bits>(x) & ~(uint64_t{1} << 63)); }

/// Size of the angle of (`x`, `y`), `y` being at least 0.
Reals angleSize(Reals x, Reals y) {
    constexpr double kTanEighth = std::numbers::sqrt2 - 1;  // tangent of an eighth of a half turn
    const Reals across = absolute(x);
    const Reals more = across > y ? across : y, less = across > y ? y : across;
    // Above an eighth of a half turn the angle is a quarter of one less what is missing to it.
    const auto upper = less > more * kTanEighth;
    const Reals numerator = upper ? less - more : less, sum = upper ? less + more : more;
    const Reals t = numerator / (sum == 0 ? Reals{1, 1} : sum);
    const Reals z = t * t;
    Reals series = z * (-1.0 / 35) + 1.0 / 33;
    for (int odd = 31; odd >= 1; odd -= 2) series = 1.0 / odd - series * z;
    Reals angle = t * series;
    angle = upper ? angle + kPi / 4 : angle;
    angle = y > across ? kPi / 2 - angle : angle;
    return x < 0 ? kPi - angle : angle;
}

Reals load(const double* numbers) {
    Reals pair;
    std::memcpy(&pair, numbers, sizeof pair);
    return pair;
}

void store(double* numbers, Reals pair) { std::memcpy(numbers, &pair, sizeof pair); }

bool isReduced(double angle) { return std::fabs(angle) < kLargestAngle; }

}  // namespace

void sinesAndCosines(const double* angles, double* sines, double* cosines, size_t count) {
    bool reduced = true;
    for (size_t i = 0; i < count; ++i) reduced &= isReduced(angles[i]);
    size_t i = 0;
    for (; reduced && i + kLanes <= count; i += kLanes) {
        const auto [s, c] = reducedSineCosine(load(angles + i));
        store(sines + i, s);
        store(cosines + i, c);
    }
    for (; i < count; ++i) {
        sines[i] = sine(angles[i]);
        cosines[i] = cosine(angles[i]);
    }
}

void angleSizes(const double* x, double y, double* angles, size_t count) {
    const Reals height = absolute(Reals{y, y});
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) store(angles + i, angleSize(load(x + i), height));
    if (i < count) angles[i] = angleSize(Reals{x[i], x[i]}, height)[0];
}

double sine(double angle) {
    return isReduced(angle) ? reducedSineCosine(Reals{angle, angle}).sine[0] : std::sin(angle);
}

double cosine(double angle) {
    return isReduced(angle) ? reducedSineCosine(Reals{angle, angle}).cosine[0] : std::cos(angle);
}

}  // namespace krl
