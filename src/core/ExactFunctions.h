#pragma once

/// Functions of the C library, each the double nearest to the true value. The libraries of systems differ in
/// the last bit of theirs, and a byte can depend on it; these are the same everywhere. They take about as
/// long as a hundred divisions, so loops over pixels use something else and turn to them in doubt.
namespace krl {

/// Of an angle in radians, of any size.
double exactSine(double angle);
double exactCosine(double angle);
/// The angle of the point (`x`, `y`), -pi to pi, as `std::atan2`.
double exactAngle(double y, double x);
double exactExponential(double x);
double exactLogarithm(double x);
/// `base` to the power of `exponent`; `base` is not below 0.
double exactPower(double base, double exponent);
/// `sqrt(x * x + y * y)`
double exactLength(double x, double y);

/// Quick ones, the same everywhere too, within a 10^14th of the true value. The exponential is for -700 to
/// 700, the logarithm for numbers above 0.
double roughExponential(double x);
double roughLogarithm(double x);

}  // namespace krl
