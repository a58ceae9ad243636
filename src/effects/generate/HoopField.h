#pragma once

#include <cstdint>

#include "core/Scratch.h"
#include "kernels/path/DigitalLine.h"

namespace krl {

/// How far along a ray each pixel of a box lies. Rays are drawn with a thick brush on a grid five times as
/// fine as the picture; the first ray to come to a cell of the grid owns it, and a pixel shows the ray that
/// last took a cell of it.
class HoopField {
public:
    /// The fraction of a pixel that no ray has come to.
    static constexpr float kUntouched = -1.0f;

    explicit HoopField(const GridBox& box);

    /// Draws the ray between two pixels; fractions run from 0 at `outer` to 1 at `inner`.
    void draw(Point inner, Point outer);

    float fractionAt(int32_t x, int32_t y) const { return fractions_[placeOf(x, y)]; }
    /// Whether so much has been drawn that no sensible hoop asks for more.
    bool isExhausted() const { return stampsLeft_ < 0; }

private:
    size_t placeOf(int32_t x, int32_t y) const {
        return size_t(y - box_.top) * size_t(box_.right - box_.left) + size_t(x - box_.left);
    }
    void stamp(int32_t cellX, int32_t cellY, float fraction);

    GridBox box_;                   ///< in pixels
    Scratch<float> fractions_;      ///< by pixel
    Scratch<uint32_t> takenCells_;  ///< by pixel, a bit for each of its cells
    int64_t stampsLeft_;
};

}  // namespace krl
