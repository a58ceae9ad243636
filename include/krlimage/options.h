#pragma once

#include <cstdint>

namespace krl {

/// How samples between pixels are taken. Some effects take the word and have no use for it.
enum class SampleQuality : int32_t {
    Standard = 8,      ///< the nearest lower pixel
    Bilinear = 9,      ///< between four pixels
    Antialiased = 10,  ///< at twice the size in each direction
};

/// How a foreground colour meets the background. The numbers are the program's own.
enum class BlendMode : int32_t {
    NoBlend = 0,  ///< the foreground replaces the background, whatever its opacity
    Normal = 1,
    Add = 2,
    Darken = 3,
    Multiply = 4,
    Screen = 5,
    Lighten = 6,
    HardLight = 7,
    Difference = 8,
    PinLight = 9,  ///< has a table that only the straight-alpha form reads; the shift form takes it as normal
    Overlay = 10,
    Exclusion = 11,
    SoftLight = 12,
    ColorBurn = 13,
    ColorDodge = 14,
    Hue = 15,  ///< this and the two below have names and no arithmetic: they act as normal
    Saturation = 16,
    Color = 17,
};

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
