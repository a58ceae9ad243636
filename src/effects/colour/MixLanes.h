#pragma once

#include <cstdint>

#include "kernels/colour/ColourLanes.h"

namespace krl {

/// Moves each lane of `from` towards `to` by `opacity` of 256. Of the sum, which wraps, the low byte counts.
void mixLanes(int32_t (&from)[kBatchPixels], const int32_t (&to)[kBatchPixels], int32_t opacity);

}  // namespace krl
