#include "kernels/sample/Trigonometry.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "core/ExactFunctions.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

constexpr double kPi = std::numbers::pi;

/// Added to a number of size below 2^51 it leaves the nearest whole number in the lowest bits.
constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52

// A quarter turn in three parts. The first two hold 33 bits, so that their products with the number of
// quarter turns of any angle that is reduced here are exact.
constexpr double kQuarterTop = 0x1.921fb544p+0;
constexpr double kQuarterMiddle = 0x1.0b4611a6p-34;
constexpr double kQuarterBottom = 0x1.3198a2e037073p-69;

/// The series of both around 0, after the angle has lost its quarter turns.
inline void reducedSineCosine(double angle, double& sine, double& cosine) {
    const double rounded = angle * (2 / kPi) + kRounder;
    const double quarters = rounded - kRounder;
    const double r =
        ((angle - quarters * kQuarterTop) - quarters * kQuarterMiddle) - quarters * kQuarterBottom;
    const double z = r * r;
    double s = z * (-1 / 1307674368000.0) + 1 / 6227020800.0;  // 1/15!, 1/13!
    s = s * z - 1 / 39916800.0;
    s = s * z + 1 / 362880.0;
    s = s * z - 1 / 5040.0;
    s = s * z + 1 / 120.0;
    s = s * z - 1 / 6.0;
    s = r + r * (z * s);
    double c = z * (1 / 20922789888000.0) - 1 / 87178291200.0;  // 1/16!, 1/14!
    c = c * z + 1 / 479001600.0;
    c = c * z - 1 / 3628800.0;
    c = c * z + 1 / 40320.0;
    c = c * z - 1 / 720.0;
    c = c * z + 1 / 24.0;
    c = 1 - (0.5 * z - z * z * c);
    // In odd quadrants the two change places; signs go by half turns.
    const auto quadrant = std::bit_cast<uint64_t>(rounded), odd = -(quadrant & 1);
    const auto sineBits = std::bit_cast<uint64_t>(s), cosineBits = std::bit_cast<uint64_t>(c);
    sine = std::bit_cast<double>(((cosineBits & odd) | (sineBits & ~odd)) ^ ((quadrant & 2) << 62));
    cosine = std::bit_cast<double>(((sineBits & odd) | (cosineBits & ~odd)) ^ (((quadrant + 1) & 2) << 62));
}

/// Size of the angle of (`x`, `y`) from the size of the coordinates and whether `x` is below 0.
inline double angleSize(double x, double y) {
    constexpr double kTanEighth = std::numbers::sqrt2 - 1;  // tangent of an eighth of a half turn
    const double across = std::fabs(x), height = std::fabs(y);
    const double more = across > height ? across : height, less = across > height ? height : across;
    // Above an eighth of a half turn the angle is a quarter of one less what is missing to it.
    const bool upper = less > more * kTanEighth;
    const double missing = less - more, both = less + more;
    const double numerator = upper ? missing : less, sum = upper ? both : more;
    const double t = numerator / (sum == 0 ? 1.0 : sum);
    const double z = t * t;
    double series = z * (-1.0 / 35) + 1.0 / 33;
    for (int odd = 31; odd >= 1; odd -= 2) series = 1.0 / odd - series * z;
    const double size = t * series, beyond = size + kPi / 4;
    const double low = upper ? beyond : size, high = kPi / 2 - low;
    const double angle = height > across ? high : low, back = kPi - angle;
    return x < 0 ? back : angle;
}

KRL_VECTOR_LEVELS void reducedSinesAndCosines(const double* __restrict angles, double* __restrict sines,
                                              double* __restrict cosines, size_t count) {
    for (size_t i = 0; i < count; ++i) reducedSineCosine(angles[i], sines[i], cosines[i]);
}

bool isReduced(double angle) { return std::fabs(angle) < kLargestAngle; }

KRL_VECTOR_LEVELS bool areReduced(const double* angles, size_t count) {
    int64_t large = 0;
    for (size_t i = 0; i < count; ++i) large |= isReduced(angles[i]) ? 0 : -1;
    return large == 0;
}

}  // namespace

void sinesAndCosines(const double* angles, double* sines, double* cosines, size_t count) {
    if (areReduced(angles, count)) return reducedSinesAndCosines(angles, sines, cosines, count);
    for (size_t i = 0; i < count; ++i) {
        sines[i] = sine(angles[i]);
        cosines[i] = cosine(angles[i]);
    }
}

KRL_VECTOR_LEVELS void angleSizes(const double* __restrict x, double y, double* __restrict angles,
                                  size_t count) {
    for (size_t i = 0; i < count; ++i) angles[i] = angleSize(x[i], y);
}

double sine(double angle) {
    if (!isReduced(angle)) return exactSine(angle);
    double s, c;
    reducedSineCosine(angle, s, c);
    return s;
}

double cosine(double angle) {
    if (!isReduced(angle)) return exactCosine(angle);
    double s, c;
    reducedSineCosine(angle, s, c);
    return c;
}

}  // namespace krl
