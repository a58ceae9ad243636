#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Hue effects: each pixel is converted to a hue space, one coordinate changes, and it is converted back.
/// Alpha is never touched.
///
/// - `hueColourise`, `hueShift`, `posteriseHue`: another hue; greys have none and stay
/// - `lightnessHLS`, `lightnessHSV`: lighter or darker in one hue space or the other
///
/// The effects return the engine's `imageStatus`, or `kStatusNoTaskMemory` or `kStatusThreadFailed` where a
/// band could not be started.
namespace krl {

/// Gives every colour the hue `hueValue` in degrees, keeping lightness and saturation. `density` is
/// the share of the new colour in percent; beyond 100 it overshoots.
Status hueColourise(ImageEngine& engine, int32_t hueValue, int32_t density);

/// Turns every hue by `hueValue` degrees, mixed in by `density` percent.
Status hueShift(ImageEngine& engine, int32_t hueValue, int32_t density);

/// Multiplies the lightness of every pixel, limited to its scale.
Status lightnessHLS(ImageEngine& engine, float lightness);

/// Adds `lightness - 1` to the value of every pixel; what brightens also takes away saturation.
Status lightnessHSV(ImageEngine& engine, float lightness);

/// Brings every hue to the lower bound of its band, of `level` equal bands of the circle, and then
/// turns it by `rotation` degrees. A `level` of 0 only turns; a negative one throws `std::bad_alloc`.
Status posteriseHue(ImageEngine& engine, int32_t level, int32_t rotation);

}  // namespace krl
