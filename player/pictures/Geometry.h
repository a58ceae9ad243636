#pragma once

#include "player/pictures/Picture.h"

/// Pictures turned, cut and resized. Metadata is preserved.
namespace krl::player {

/// A rectangle within the picture.
Bitmap partOf(const Bitmap& picture, int32_t left, int32_t top, int32_t width, int32_t height);

/// The picture in another size. Throws `PictureError` for one beyond the limit.
Bitmap resized(const Bitmap& picture, int32_t width, int32_t height);

/// The picture turned clockwise, with transparent corners unless the angle is a multiple of 90 degrees.
Bitmap turned(const Bitmap& picture, double degrees);

/// The picture as an orientation of EXIF says, from 1 to 8.
Bitmap upright(Bitmap picture, int orientation);

}  // namespace krl::player
