#pragma once

#include "player/pictures/Picture.h"

namespace krl::player {

/// The structural similarity (SSIM) of two pictures of one size, from -1 to 1 for equal ones: the mean over
/// overlapping windows of 8 by 8 pixels of how alike their brightness, contrast and structure are. Of
/// brightness and of transparency, the lower counts.
double structuralSimilarity(const Bitmap& a, const Bitmap& b);

}  // namespace krl::player
