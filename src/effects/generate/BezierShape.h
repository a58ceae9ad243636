#pragma once

#include <cstdint>
#include <span>

#include "krlimage/engine.h"

namespace krl {

/// One cubic piece of an outline, as a script gives it: `handle1` is relative to `vertex`, `handle2` to the
/// first handle, and `end` is the vertex of the next piece.
struct BezierSegment {
    Point vertex, handle1, handle2, end;
};

/// Replaces the picture's colour by a matte of one closed shape: the antialiased outline, three pixels
/// thick, in all three colour bytes, and the inside at 255 in blue. Alpha stays. Coordinates count from a
/// place 200 rows above the bottom edge and 200 columns in, rows upward. With no image nothing happens and
/// all is well; a picture too large for the outline's fine grid is refused.
Status drawBezierShape(ImageEngine& engine, std::span<const BezierSegment> segments);

}  // namespace krl
