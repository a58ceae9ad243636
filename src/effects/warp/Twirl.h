#pragma once

#include "kernels/sample/Sampler.h"
#include "krlimage/engine.h"

namespace krl {

/// Turns the picture around its middle, by an angle that grows from the rim of a disc inward. `twirl` is
/// that growth, in tenths of a radian over half the picture's width; it may be negative. Pixels beyond the
/// rim stay as they are.
Status twirl(ImageEngine& engine, int32_t twirl, SampleQuality quality, ChannelTarget colourOrAlpha);

}  // namespace krl
