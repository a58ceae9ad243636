#pragma once

#include <cstddef>

#include "kernels/blend/BlendMode.h"

namespace krl {

/// Lays `count` pixels of `front` over the `pixels` at the same places, in a mode chosen beforehand: what
/// `blendChannel` and `layOver` are for one byte and one pixel, at the speed of memory. The two spans must
/// not overlap, unless they are the same span.
using BlendFunction = void (*)(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables);

/// The shift form, where the alpha of `front` is the opacity and the alpha of `pixels` stays.
BlendFunction shiftBlendSpan(BlendMode mode);
/// The straight-alpha form, where both alphas are composed.
BlendFunction overBlendSpan(BlendMode mode);

}  // namespace krl
