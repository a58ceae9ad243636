#pragma once

#include "krlimage/engine.h"

/// Effects that move, clear, derive or show the alpha byte. Together with the keys they let a script build a
/// matte in steps. Each gives `kStatusNoImage` or `kStatusNoPixels` where there is no picture.
namespace krl {

/// Clears alpha outside a rectangle. `bottom` counts from the first row in memory and `top` from the last.
/// The lines at `left` and `bottom` are cleared too, so 0 there still clears one line where 0 at `right` and
/// `top` clears none. Negative arguments count as 0.
Status alphaCrop(ImageEngine& engine, int32_t top, int32_t right, int32_t bottom, int32_t left);

/// Moves the alpha plane by whole pixels. Places that nothing moves onto keep the alpha they had.
Status alphaOffset(ImageEngine& engine, int32_t horizontal, int32_t vertical);

/// What `clearAlpha` leaves.
enum class AlphaFill : int32_t { Black = 19, White = 20 };

/// Sets all alpha to 0 for black, 255 for white.
Status clearAlpha(ImageEngine& engine, AlphaFill direction);

/// Takes the red byte into alpha: white leaves alpha as it is, red 0 clears it.
Status combineRGBwithAlpha(ImageEngine& engine);

/// Which way `erodeWhite` eats into the matte.
enum class ErodeDirection : int32_t {
    All = 64,    ///< all round
    Right = 65,  ///< the window ends at the pixel
    Left = 66,   ///< the window begins at the pixel
};

/// Shrinks the matte: alpha becomes the smallest of the `2 * distance + 1` samples of a window. `All` takes a
/// window along the row and then one down the column; both start late: sample `distance - 1` of a line never
/// enters them, and near a line's start they reach one sample further back. `Right` and `Left` work along
/// rows alone; with `Left` column 0 counts as 255. A negative `distance` counts as 0. Colour stays.
Status erodeWhite(ImageEngine& engine, int32_t distance, ErodeDirection direction);

/// Folds the alpha of `dotImage`, an image of the same size, in as a key matte: `keep` only lowers alpha, its
/// opposite only raises it. `kStatusNoMaskImage` or `kStatusMaskSize` where the mask does not fit.
Status inputMask(ImageEngine& engine, const SecondImage& dotImage, bool keep, bool invert);

/// Sets alpha to the mean of the three colours.
Status rgbToAlpha(ImageEngine& engine);

/// Limits alpha to the mean of the three colours.
Status rgbaToAlpha(ImageEngine& engine);

/// Shows alpha as an opaque grey.
Status viewAlpha(ImageEngine& engine);

}  // namespace krl
