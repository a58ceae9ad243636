#pragma once

#include "core/Numbers.h"

namespace krl {

/// A frequency in degrees for each pixel as radians, in single precision.
inline float radiansPerPixel(float frequency) { return static_cast<float>(frequency * kRadiansPerDegree); }

}  // namespace krl
