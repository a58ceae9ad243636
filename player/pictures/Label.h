#pragma once

#include <optional>
#include <string>

#include "player/pictures/Picture.h"

namespace krl::player {

/// How text is drawn.
struct LabelStyle {
    int32_t size = 13;   ///< of the letters, in pixels
    int32_t width = 0;   ///< lines are broken there; 0 for one line
    uint8_t grey = 230;  ///< of the letters
    bool isBold = false;
    bool isCentred = false;
};

/// Text on a transparent ground; nothing if this build or system draws no text.
std::optional<Bitmap> drawLabel(const std::string& text, const LabelStyle& style);

/// Puts a picture with transparency over another, at `x`, `y`; what is outside is cut off.
void drawOver(Bitmap& ground, const Bitmap& picture, int32_t x, int32_t y);

/// The picture over the squares that show transparency.
Bitmap overSquares(const Bitmap& picture, int32_t side);

}  // namespace krl::player
