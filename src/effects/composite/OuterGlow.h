#pragma once

#include <span>

#include "krlimage/engine.h"
#include "krlimage/options.h"

namespace krl {

/// Turns the image's alpha into a coloured halo with a coloured core.
///
/// The halo is the image's shape, grown by `expandBlur` and softened by `outerBlur`; the core is the shape
/// softened by `coreFeather`. One colour in a list colours its part evenly; two or more are a ramp over
/// alpha, their positions in percent. `intensity` brightens the halo the more the lower it is, and
/// `coreTransparency` 0 keeps the core whole. `quality` is accepted and changes nothing.
Status outerGlow(ImageEngine& engine, int32_t coreFeather, int32_t expandBlur, int32_t outerBlur,
                 std::span<const CurveKey> outerColours, std::span<const CurveKey> coreColours,
                 int32_t intensity, int32_t coreTransparency, SampleQuality quality);

}  // namespace krl
