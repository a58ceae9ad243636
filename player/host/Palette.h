#pragma once

#include <cstdint>

#include "player/pictures/Picture.h"

/// The colours of images of up to 8 bits a pixel.
namespace krl::player {

/// In every palette the first colour is white and the last black.
enum class Palette : uint8_t { System, Greys, Web };

/// The colour of `index` in images of 1, 2, 4 or 8 bits.
Pixel paletteColour(Palette palette, int32_t depth, uint8_t index);

/// The index of the colour that differs least from `colour`.
uint8_t nearestIndex(Palette palette, int32_t depth, const Pixel& colour);

}  // namespace krl::player
