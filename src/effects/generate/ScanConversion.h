#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "kernels/path/DigitalLine.h"

namespace krl {

struct PolygonCorner {
    double x = 0, y = 0;
};

/// Fills a general polygon, concave ones too, row by row: calls `span(y, left, right)` for the
/// cells whose middles lie inside, `right` exclusive and one short of the last of them. Only rows and
/// columns of `clip` are visited; its last column is never reached. Corners must be finite.
void scanPolygon(std::span<const PolygonCorner> corners, const GridBox& clip,
                 const std::function<void(int32_t y, int32_t left, int32_t right)>& span);

}  // namespace krl
