#pragma once

#include <cstdint>
#include <vector>

#include "core/Scratch.h"

namespace krl {

/// The value at one point of the noise lattice, -1 to 1: a hash of its place.
inline float latticeNoise(int32_t x, int32_t y) {
    uint32_t n = static_cast<uint32_t>(x) + static_cast<uint32_t>(y) * 57u;
    n ^= n << 13;
    const uint32_t m = (n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7FFFFFFFu;
    return static_cast<float>(1.0 - static_cast<int32_t>(m) * 9.313225746154785e-10);
}

/// Smooth noise over a picture: lattice values, mixed along rows and then down columns by weights
/// that sum to more than 1 between the points, so that it overshoots there.
///
/// Rows are worked out in order. Where the lattice row stays the same, and it does for a clump's
/// height, a row costs one mix for each pixel.
class SmoothNoise {
public:
    /// Noise at `(offset + x) * scale`, `(offset + y) * scale` for columns x up to `width`; `scale` is
    /// at most 1.
    SmoothNoise(int32_t width, int32_t offset, float scale);

    /// The rows of one band as it goes down the picture.
    class Walk {
    public:
        explicit Walk(const SmoothNoise& noise);

        /// Noise as levels: half of it and a half, on 0..255, for every column of row `y`.
        const uint8_t* levelsOf(int32_t y);

    private:
        void mixAlong(int32_t latticeRow, float* out);

        const SmoothNoise& noise_;
        int32_t latticeRow_ = 0;
        bool hasRows_ = false;
        Scratch<float> upper_, lower_, lattice_;
        Scratch<uint8_t> levels_;
    };

private:
    /// How far a lattice value counts at distance 1 - `t`.
    static double weight(double t) { return 3.0 * t - 2.0 * t * t * t; }
    float place(int32_t along) const;

    int32_t width_, offset_;
    float scale_;
    int32_t firstPoint_ = 0, pointCount_ = 0;  ///< lattice columns in use
    Scratch<int32_t> points_;                  ///< by column: the lattice column left of it, from the first
    Scratch<double> leftWeights_, rightWeights_;
};

}  // namespace krl
