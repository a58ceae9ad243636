#pragma once

#include "player/pictures/Picture.h"

namespace krl::player {

/// The picture in another size: each pixel is the mean of the pixels it covers, with colours weighted
/// by alpha. Metadata is preserved.
Bitmap scaled(const Bitmap& picture, int32_t width, int32_t height);

/// The picture scaled down to `width` with its proportions kept; unchanged if it is not wider.
Bitmap noWiderThan(const Bitmap& picture, int32_t width);

}  // namespace krl::player
