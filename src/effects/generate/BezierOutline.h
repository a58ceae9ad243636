#pragma once

#include <span>
#include <vector>

#include "krlimage/generate.h"

namespace krl {

/// The shape on a grid of `scale` cells to a pixel, rows downward, as points that follow one another
/// around the outline.
std::vector<Point> flattenOutline(std::span<const BezierSegment> segments, int32_t imageHeight,
                                  int32_t scale);

}  // namespace krl
