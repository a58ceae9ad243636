#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Unsharp masking: the difference between the picture and its blur, added to the picture.
///
/// - `sharpen`            on bytes
/// - `sharpenBrightness`  on luma alone
namespace krl {

/// Moves every byte of `target` away from its blur by `amount` times their difference, where twice
/// the difference reaches `threshold`. `radius` of 0 or less, or `amount` 0, changes nothing.
Status sharpen(ImageEngine& engine, int32_t radius, float amount, int32_t threshold, ChannelTarget target);

/// The same on luma; the colour differences stay. All pixels pass through the conversion and back.
Status sharpenBrightness(ImageEngine& engine, int32_t radius, float amount, int32_t threshold);

}  // namespace krl
