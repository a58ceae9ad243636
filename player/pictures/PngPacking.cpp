#include <algorithm>

#include "player/pictures/Formats.h"

namespace krl::player {

void ContentCount::add(std::span<const Pixel> piece) {
    if (piece.empty()) return;
    uint64_t alike = counted_ > 0 && piece.front() == last_ ? 1 : 0;
    for (size_t i = 1; i < piece.size(); ++i) alike += piece[i] == piece[i - 1] ? 1 : 0;
    alike_ += alike;
    counted_ += piece.size();
    last_ = piece.back();
    isOpaque_ =
        isOpaque_ && std::all_of(piece.begin(), piece.end(), [](const Pixel& p) { return p.alpha == 255; });
}

std::optional<bool> ContentCount::isDrawing() const {
    if (alike_ * 2 > pixels_) return true;
    if ((alike_ + (pixels_ - counted_)) * 2 <= pixels_) return false;
    return std::nullopt;
}

PictureContent contentOf(const Bitmap& picture) {
    ContentCount count(picture.pixels.size());
    count.add(picture.pixels);
    return {count.isOpaque(), count.isDrawing().value_or(false)};
}

PngPacking pngPacking(bool isDrawing, const std::string& level) {
    // Filters make a photograph smaller even at a fast level, and a drawing larger.
    return {!isDrawing, level.empty() ? (isDrawing ? 6 : 2) : std::stoi(level)};
}

}  // namespace krl::player
