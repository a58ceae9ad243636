#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

/// Whether most pixels are like their left neighbour, as in drawings and pictures of screens.
bool isFlat(const Bitmap& picture) {
    const std::vector<Pixel>& pixels = picture.pixels;
    size_t same = 0;
    for (size_t i = 1; i < pixels.size(); ++i) same += pixels[i] == pixels[i - 1] ? 1 : 0;
    return same * 2 > pixels.size();
}

}  // namespace

PngPacking pngPacking(const Bitmap& picture, const std::string& level) {
    // Filters make a photograph smaller even at a fast level, and a drawing larger.
    const bool isDrawing = isFlat(picture);
    return {!isDrawing, level.empty() ? (isDrawing ? 6 : 2) : std::stoi(level)};
}

}  // namespace krl::player
