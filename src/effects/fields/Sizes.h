#pragma once

#include "krlimage/engine.h"
#include "krlimage/pixel.h"

/// Half-size reduction and the checker pattern.
namespace krl {

/// The description of the loaded image's half, rounded down; `kStatusRefused` for an image of one
/// row or column.
Status halfSizeInfo(const ImageEngine& engine, ImageInfo& half);

/// Fills `half`, of the size that `halfSizeInfo` gives, with the mean of each 2 by 2 block, all four
/// bytes alike. The bands are part of the effect: each takes its own rows of the image, starting a
/// new block at its first, and fills no more than its own rows of the half.
Status halfSize(const ImageEngine& engine, const NewImage& half);

/// Tiles the image in squares of `size` pixels from the top left, `cOne` where row plus column of
/// the tile is even and `cTwo` where it is odd; alpha stays. A size below 1 counts as 1.
Status drawCheckerBox(ImageEngine& engine, int32_t size, Colour cOne, Colour cTwo);

}  // namespace krl
