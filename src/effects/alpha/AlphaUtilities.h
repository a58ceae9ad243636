#pragma once

#include "krlimage/engine.h"

/// Effects that move, clear, derive or show the alpha byte; with the keys they let a script build
/// a matte in steps.
namespace krl {

/// Clears alpha outside a rectangle. `bottom` counts from the first row in memory and `top` from
/// the last. The lines at `left` and `bottom` are themselves cleared, so 0 there still takes one
/// line where 0 at `right` and `top` takes none. Negative arguments count as 0.
Status alphaCrop(ImageEngine& engine, int32_t top, int32_t right, int32_t bottom, int32_t left);

/// Moves the alpha plane. Places that nothing moves onto keep the alpha they had.
Status alphaOffset(ImageEngine& engine, int32_t horizontal, int32_t vertical);

/// What `clearAlpha` leaves.
enum class AlphaFill : int32_t { Black = 19, White = 20 };

/// Sets all alpha to 0 for black, 255 for white.
Status clearAlpha(ImageEngine& engine, AlphaFill direction);

/// Takes the red byte into alpha: white leaves alpha alone, red 0 clears it.
Status combineRGBwithAlpha(ImageEngine& engine);

/// Folds the alpha of `dotImage`, an image of the same size, in as a key matte.
Status inputMask(ImageEngine& engine, const SecondImage& dotImage, bool keep, bool invert);

/// Alpha becomes the mean of the colour.
Status rgbToAlpha(ImageEngine& engine);

/// Alpha is limited to the mean of the colour.
Status rgbaToAlpha(ImageEngine& engine);

/// Shows alpha as an opaque grey.
Status viewAlpha(ImageEngine& engine);

}  // namespace krl
