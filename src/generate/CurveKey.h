#pragma once

#include <cstdint>

namespace krl {

/// One colour at a place on a line. The place is in the caller's unit: columns for a gradient,
/// levels 0..255 for the ramps that are indexed by level.
struct CurveKey {
    int32_t red = 0;
    int32_t green = 0;
    int32_t blue = 0;
    float position = 0;

    /// Channel by byte order: 0 blue, 1 green, 2 red.
    int32_t channel(int32_t index) const { return index == 0 ? blue : index == 1 ? green : red; }
};

}  // namespace krl
