#pragma once

namespace krl {

/// Linear red, green and blue of a light.
struct LightColour {
    double red = 0, green = 0, blue = 0;
};

/// The colour of a black body of `kelvin`, as the CIE 1931 observer sees it, at a luminance of 1.
LightColour blackBodyColour(double kelvin);

/// Colour matching functions of the CIE 1931 2-degree observer, one row for every 5 nm from 380 to
/// 780.
struct ObserverRow {
    double x, y, z;
};
inline constexpr int kObserverRows = 81;
extern const ObserverRow kObserver[kObserverRows];

}  // namespace krl
