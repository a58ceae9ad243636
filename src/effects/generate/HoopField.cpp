#include "effects/generate/HoopField.h"

#include <algorithm>
#include <cmath>

#include "core/Bands.h"
#include "core/ExactFunctions.h"
#include "core/Numbers.h"

namespace krl {

namespace {

/// Cells of a pixel on each axis.
constexpr int32_t kScale = 5;

/// The square brush, around the cell of its centre: 3.75 cells to each side, the high edge exclusive.
constexpr IndexRange kBrush{-4, 4};

/// Stamps that are enough for any hoop whose rays are not all alike: so many, and so many for each pixel.
constexpr int64_t kMostStamps = 1 << 24, kMostStampsOfPixel = 32;

/// The pixels that a brush touches on an axis.
constexpr int32_t kBrushPixels = 3;

/// The cells of each touched pixel that a brush covers, along one axis, by the place of its first cell
/// within the first pixel. A column takes one bit and a row five times as many, so that the product of a
/// pixel's columns and rows has a bit for each covered cell.
struct BrushCells {
    uint32_t columns[kScale][kBrushPixels] = {};
    uint32_t rows[kScale][kBrushPixels] = {};

    constexpr BrushCells() {
        for (int32_t phase = 0; phase < kScale; ++phase)
            for (int32_t cell = phase; cell < phase + kBrush.last - kBrush.first; ++cell) {
                columns[phase][cell / kScale] |= 1u << cell % kScale;
                rows[phase][cell / kScale] |= 1u << cell % kScale * kScale;
            }
    }
};
constexpr BrushCells kBrushCells;

int32_t pixelOf(int32_t cell) { return cell >= 0 ? cell / kScale : -((kScale - 1 - cell) / kScale); }

/// First cell of a pixel; far outside where there is none in 32 bits.
int32_t cellOf(int32_t pixel) {
    constexpr int64_t farthest = DigitalLine::kFarthest + 1;
    return static_cast<int32_t>(clampTo<int64_t>(int64_t(pixel) * kScale, -farthest, farthest));
}

Point cellOf(Point pixel) { return {cellOf(pixel.y), cellOf(pixel.x)}; }

/// The cells of `box`, with room for brushes whose centre lies outside.
GridBox reachOf(const GridBox& box) {
    return {cellOf(box.left) - kBrush.last, cellOf(box.top) - kBrush.last, cellOf(box.right) - kBrush.first,
            cellOf(box.bottom) - kBrush.first};
}

}  // namespace

HoopField::HoopField(const GridBox& box)
    : box_(box),
      fractions_(size_t(box.right - box.left) * size_t(box.bottom - box.top)),
      takenCells_(fractions_.size()),
      stampsLeft_(kMostStamps + kMostStampsOfPixel * int64_t(fractions_.size())) {
    std::ranges::fill(fractions_, kUntouched);
    std::ranges::fill(takenCells_, 0u);
}

void HoopField::draw(Point inner, Point outer) {
    const Point from = cellOf(inner), to = cellOf(outer);
    const double length = exactLength(double(from.x) - to.x, double(from.y) - to.y);
    const DigitalLine line(from, to, HalfwayMove::Straight);
    line.walk(reachOf(box_), [&](int32_t x, int32_t y, int64_t) {
        const double dx = double(x) - to.x, dy = double(y) - to.y;
        const double fraction = length > 0 ? std::sqrt(dx * dx + dy * dy) / length : 0.0;
        stamp(x, y, static_cast<float>(fraction));
        --stampsLeft_;
    });
}

void HoopField::stamp(int32_t cellX, int32_t cellY, float fraction) {
    const int32_t cellLeft = cellX + kBrush.first, cellTop = cellY + kBrush.first;
    const int32_t left = pixelOf(cellLeft), top = pixelOf(cellTop);
    const uint32_t(&columns)[kBrushPixels] = kBrushCells.columns[cellLeft - left * kScale];
    const uint32_t(&rows)[kBrushPixels] = kBrushCells.rows[cellTop - top * kScale];
    const int32_t firstX = std::max(left, box_.left), pastX = std::min(left + kBrushPixels, box_.right);
    const int32_t firstY = std::max(top, box_.top), pastY = std::min(top + kBrushPixels, box_.bottom);
    for (int32_t y = firstY; y < pastY; ++y) {
        for (int32_t x = firstX; x < pastX; ++x) {
            const uint32_t cells = columns[x - left] * rows[y - top];
            const size_t place = placeOf(x, y);
            if ((takenCells_[place] & cells) == cells) continue;
            takenCells_[place] |= cells;
            fractions_[place] = fraction;
        }
    }
}

}  // namespace krl
