#pragma once

#include <cstdint>

#include "krlimage/engine.h"

/// Dark, bright and transparent areas grown by a square window. The names follow what becomes of
/// bright figures on dark in print: dilation spreads dark, erosion spreads bright.
///
/// - `dilation`   each colour byte takes the smallest of its window
/// - `erosion`    each colour byte takes the largest of its window
/// - `erodeWhite` alpha takes the smallest of a window, all round or to one side
namespace krl {

/// Which way `erodeWhite` eats into the matte.
enum class ErodeDirection : int32_t {
    All = 64,    ///< all round
    Right = 65,  ///< the window ends at the pixel
    Left = 66,   ///< the window begins at the pixel
};

/// Spreads dark colours: each colour byte becomes the smallest within `size` pixels along its row and
/// then its column. A negative `size` counts as 0.
///
/// The window is a ring that starts late: sample `size - 1` of a line never enters it, and near a
/// line's start the window lies one sample further back. A picture with any alpha below 255 has its
/// colours scaled by alpha before either pass, so they darken where alpha is low. Alpha stays.
Status dilation(ImageEngine& engine, int32_t size);

/// Spreads bright colours: `dilation` with the largest byte in place of the smallest.
Status erosion(ImageEngine& engine, int32_t size);

/// Shrinks the matte: alpha becomes the smallest of the `2 * distance + 1` samples of a window. `All`
/// works as `dilation` does, on alpha. `Right` and `Left` work along rows alone; with `Left` column
/// 0 counts as 255. A negative `distance` counts as 0. Colour stays.
Status erodeWhite(ImageEngine& engine, int32_t distance, ErodeDirection direction);

}  // namespace krl
