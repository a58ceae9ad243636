#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Blurs that work on luma and colour differences:
///
/// - `blurProYUV`  each of the three with a radius of its own
/// - `yuvBlur`     the colour differences alone, by box or tent
namespace krl {

/// How `yuvBlur` softens the colour differences.
enum class ChromaBlurType : int32_t {
    Horizontal = 60,  ///< a mean along the rows
    Vertical = 61,    ///< a mean down the columns
    Box = 62,         ///< both, rows first
    Gaussian = 63,    ///< the tent
};

/// Blurs luma by `blurY` and the two colour differences by `blurU` and `blurV`; a radius of 0 or
/// less leaves its plane sharp. Alpha stays. All pixels pass through the conversion and back.
Status blurProYUV(ImageEngine& engine, int32_t blurY, int32_t blurU, int32_t blurV);

/// Blurs the colour differences by `blurAmount` and leaves the luma sharp. An amount of 0 or less
/// still passes the picture through the conversion, with the loss that this brings. For `vertical`
/// and `box` the outcome depends on the number of bands.
Status yuvBlur(ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount);

}  // namespace krl
