#pragma once

#include <string>

#include "player/cli/Commands.h"
#include "player/pictures/Picture.h"

/// Pictures as text for a terminal.
namespace krl::player {

/// The size of a picture of `width` by `height` pixels in a space of cells, which are twice as high as wide:
/// as large as fits, but with no pixel over more than half a cell.
TerminalSize cellsFor(int32_t width, int32_t height, const TerminalSize& space);

/// Two pixels above each other in every cell, as half blocks in 24-bit colours.
std::string halfBlocks(const Bitmap& picture, const TerminalSize& cells);

/// The brightness of every cell as one of five shades, without colours.
std::string shades(const Bitmap& picture, const TerminalSize& cells);

/// How a terminal takes pictures.
enum class PixelProtocol { None, Sixel, Kitty };

/// What the terminal of this environment takes; `None` in builds without the library for it.
PixelProtocol pixelProtocol();
/// Whether this build has that library.
bool hasPixelProtocols();

/// The picture in pixels, in this space of cells.
std::string pixels(const Bitmap& picture, PixelProtocol protocol, const TerminalSize& cells);

}  // namespace krl::player
