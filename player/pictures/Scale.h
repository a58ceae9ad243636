#pragma once

#include "player/pictures/Picture.h"

namespace krl::player {

/// A picture of another size, each pixel the mean of what it covers; colours weigh as much as they
/// are opaque. Metadata goes along.
Bitmap scaled(const Bitmap& picture, int32_t width, int32_t height);

/// A picture of the same proportions that is no wider than `width`; one that is not stays as it is.
Bitmap noWiderThan(const Bitmap& picture, int32_t width);

}  // namespace krl::player
