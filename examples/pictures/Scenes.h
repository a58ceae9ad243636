#pragma once

#include "Paint.h"

namespace krl::paint {

/// A mountain lake at sunset, 960 by 640.
player::Bitmap landscape();
/// A woman before a green backing, soft at the edges and with its light on her, 960 by 640.
player::Bitmap greenscreen();
/// The same woman near a window at evening, 960 by 640.
player::Bitmap portrait();
/// A round sign with straight alpha on nothing, 960 by 640.
player::Bitmap logo();

}  // namespace krl::paint
