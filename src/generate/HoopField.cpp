#include "generate/HoopField.h"

#include <algorithm>
#include <cmath>

#include "core/Bands.h"
#include "core/Numbers.h"

namespace krl {

namespace {

/// Cells of a pixel on each axis.
constexpr int32_t kScale = 5;

/// The square brush, around the cell of its centre: 3.75 cells to each side, the high edge exclusive.
constexpr IndexRange kBrush{-4, 4};

/// Stamps that are seconds of work; far more than fill any picture when rays are not all alike.
constexpr int64_t kMostStamps = int64_t{1} << 28;

/// One pixel's cells of a column or row, as the bits 0 to 4, of those that the brush covers.
uint32_t coveredCells(int32_t firstCell, int32_t lastCell, int32_t pixel) {
    const int32_t from = std::max(firstCell - pixel * kScale, 0);
    const int32_t to = std::min(lastCell - pixel * kScale, kScale);
    return ((1u << to) - 1u) & ~((1u << from) - 1u);
}

/// The cells of a pixel where covered columns and rows meet; row r stands at the bits from 5 r on.
uint32_t crossing(uint32_t columns, uint32_t rows) {
    uint32_t cells = 0;
    for (int32_t row = 0; row < kScale; ++row)
        if (rows >> row & 1u) cells |= columns << (row * kScale);
    return cells;
}

/// Pixel of a cell, and the first pixel past the one before cell `end`.
int32_t pixelOf(int32_t cell) { return cell >= 0 ? cell / kScale : -((kScale - 1 - cell) / kScale); }
int32_t pixelPast(int32_t end) { return pixelOf(end - 1) + 1; }

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
      stampsLeft_(kMostStamps) {
    std::ranges::fill(fractions_, kUntouched);
    std::ranges::fill(takenCells_, 0u);
}

void HoopField::draw(Point inner, Point outer) {
    const Point from = cellOf(inner), to = cellOf(outer);
    const double length = std::hypot(double(from.x) - to.x, double(from.y) - to.y);
    const DigitalLine line(from, to, HalfwayMove::Straight);
    line.walk(reachOf(box_), [&](int32_t x, int32_t y, int64_t) {
        const double dx = double(x) - to.x, dy = double(y) - to.y;
        const double fraction = length > 0 ? std::sqrt(dx * dx + dy * dy) / length : 0.0;
        stamp(x, y, static_cast<float>(fraction));
        --stampsLeft_;
    });
}

void HoopField::stamp(int32_t cellX, int32_t cellY, float fraction) {
    const int32_t left = cellX + kBrush.first, right = cellX + kBrush.last;
    const int32_t top = cellY + kBrush.first, bottom = cellY + kBrush.last;
    const int32_t pastX = std::min(pixelPast(right), box_.right),
                  pastY = std::min(pixelPast(bottom), box_.bottom);
    for (int32_t y = std::max(pixelOf(top), box_.top); y < pastY; ++y) {
        const uint32_t rows = coveredCells(top, bottom, y);
        for (int32_t x = std::max(pixelOf(left), box_.left); x < pastX; ++x) {
            const uint32_t cells = crossing(coveredCells(left, right, x), rows);
            const size_t place = placeOf(x, y);
            if ((takenCells_[place] & cells) == cells) continue;
            takenCells_[place] |= cells;
            fractions_[place] = fraction;
        }
    }
}

}  // namespace krl
