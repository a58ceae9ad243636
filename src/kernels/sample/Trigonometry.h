#pragma once

#include <cstddef>

/// Sines, cosines and arc tangents for whole rows of angles. They are made of additions,
/// multiplications, divisions and square roots alone, so that every platform gets the same bits and
/// the compiler makes vectors of them.
namespace krl {

/// Angles whose size is below this are reduced here; larger ones take longer.
inline constexpr double kLargestAngle = 1.0e5;

/// `sines[i] = sin(angles[i])` and `cosines[i] = cos(angles[i])`, for `count` angles in radians, within
/// a unit in the last place or two. The blocks must not overlap.
void sinesAndCosines(const double* __restrict angles, double* __restrict sines, double* __restrict cosines,
                     size_t count);

/// `angles[i]` is the size of the angle of (`x[i]`, `y`), in 0..pi, within some 1e-14; 0 for (0, 0).
void angleSizes(const double* __restrict x, double y, double* __restrict angles, size_t count);

/// Sine of one angle, the same bits as above.
double sine(double angle);
/// Cosine of one angle, the same bits as above.
double cosine(double angle);

}  // namespace krl
