#pragma once

#include "kernels/colour/ColourLanes.h"

namespace krl {

/// A factor on saturation, limited to 0..2.
float saturationFactor(float saturation);

/// Multiplies the saturation of every lane by `factor` and limits it to 0..1. Channels are truncated, not
/// rounded.
void saturate(ColourLanes& colours, float factor);

}  // namespace krl
