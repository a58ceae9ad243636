#include <algorithm>

#include "player/lingo/ImageTools.h"

/// Parts of images that their colours make out.
namespace krl::player {

namespace {

bool isWhite(const Pixel& pixel) { return pixel.blue == 255 && pixel.green == 255 && pixel.red == 255; }

/// Visits a pixel that `belongs`, and all that do and are joined to it by their sides.
template <class Belongs, class Visit>
void spread(const ImageObject& image, int32_t x, int32_t y, Belongs&& belongs, Visit&& visit) {
    struct Spot {
        int32_t x, y;
    };
    std::vector<Spot> open;
    const auto reach = [&](int32_t atX, int32_t atY) {
        if (!image.holds(atX, atY) || !belongs(atX, atY)) return;
        visit(atX, atY);
        open.push_back({atX, atY});
    };
    reach(x, y);
    while (!open.empty()) {
        const Spot spot = open.back();
        open.pop_back();
        reach(spot.x - 1, spot.y);
        reach(spot.x + 1, spot.y);
        reach(spot.x, spot.y - 1);
        reach(spot.x, spot.y + 1);
    }
}

}  // namespace

std::vector<bool> matteOf(const ImageObject& image, int32_t level) {
    const auto& pixels = image.bitmap.pixels;
    std::vector<bool> shown(pixels.size(), true);
    if (image.depth == 32 && image.useAlpha) {
        for (size_t i = 0; i < pixels.size(); ++i) shown[i] = pixels[i].alpha > level;
        return shown;
    }
    const auto placeOf = [&](int32_t x, int32_t y) {
        return static_cast<size_t>(y) * static_cast<size_t>(image.width()) + static_cast<size_t>(x);
    };
    const auto belongs = [&](int32_t x, int32_t y) {
        return shown[placeOf(x, y)] && isWhite(pixels[placeOf(x, y)]);
    };
    const auto hide = [&](int32_t x, int32_t y) { shown[placeOf(x, y)] = false; };
    for (int32_t x = 0; x < image.width(); ++x)
        for (const int32_t y : {0, image.height() - 1}) spread(image, x, y, belongs, hide);
    for (int32_t y = 0; y < image.height(); ++y)
        for (const int32_t x : {0, image.width() - 1}) spread(image, x, y, belongs, hide);
    return shown;
}

void floodFill(ImageObject& image, int32_t x, int32_t y, const Value& colour) {
    if (!image.holds(x, y)) return;
    const Pixel old = image.bitmap.row(y)[x], made = pixelFor(image, colour);
    const auto same = [](const Pixel& a, const Pixel& b) {
        return a.blue == b.blue && a.green == b.green && a.red == b.red;
    };
    if (same(old, made)) return;
    spread(
        image, x, y, [&](int32_t atX, int32_t atY) { return same(image.bitmap.row(atY)[atX], old); },
        [&](int32_t atX, int32_t atY) {
            Pixel& pixel = image.bitmap.row(atY)[atX];
            pixel = {made.blue, made.green, made.red, pixel.alpha};
        });
    settle(image, boundsOf(image));
}

PixelRect inkedPart(const ImageObject& image) {
    PixelRect part{image.width(), image.height(), 0, 0};
    for (int32_t y = 0; y < image.height(); ++y)
        for (int32_t x = 0; x < image.width(); ++x) {
            if (isWhite(image.bitmap.row(y)[x])) continue;
            part.left = std::min<int64_t>(part.left, x);
            part.right = std::max<int64_t>(part.right, x + 1);
            part.top = std::min<int64_t>(part.top, y);
            part.bottom = y + 1;
        }
    return part.empty() ? boundsOf(image) : part;
}

}  // namespace krl::player
