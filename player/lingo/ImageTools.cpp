#include "player/lingo/ImageTools.h"

#include <algorithm>
#include <cmath>

#include "player/lingo/Arithmetic.h"

namespace krl::player {

namespace {

constexpr int32_t kFull = 255;

/// `a * b / 255`, rounded.
int32_t scaled(int32_t a, int32_t b) { return (a * b + 127) / 255; }

bool isWhite(const Pixel& pixel) { return pixel.blue == 255 && pixel.green == 255 && pixel.red == 255; }

/// `upper` over `lower` with straight alpha; `strength` combines the upper alpha with the blend level.
void layOver(Pixel& lower, const Pixel& upper, int32_t strength, bool lowerUsesAlpha) {
    if (strength == 0) return;
    const int32_t below = scaled(lowerUsesAlpha ? lower.alpha : kFull, kFull - strength);
    const int32_t whole = strength + below;
    for (size_t channel = 0; channel < 3; ++channel)
        lower[channel] =
            static_cast<uint8_t>((upper[channel] * strength + lower[channel] * below + whole / 2) / whole);
    if (lowerUsesAlpha) lower.alpha = static_cast<uint8_t>(std::min(whole, kFull));
}

/// For each target coordinate, the nearest source coordinate.
std::vector<int32_t> sourcePlaces(int64_t to, int64_t toLength, int64_t from, int64_t fromLength,
                                  int64_t first, int64_t last) {
    std::vector<int32_t> places;
    places.reserve(static_cast<size_t>(last - first));
    for (int64_t place = first; place < last; ++place)
        places.push_back(static_cast<int32_t>(from + (place - to) * fromLength / toLength));
    return places;
}

/// The mask's level for the source pixel at this place.
int32_t maskLevel(const CopyOptions& options, int32_t x, int32_t y) {
    const int64_t maskX = int64_t{x} - options.maskX, maskY = int64_t{y} - options.maskY;
    if (!options.mask->holds(maskX, maskY)) return 0;
    return options.mask->bitmap.row(static_cast<int32_t>(maskY))[maskX].blue;
}

Value copyOfPart(Runtime& runtime, const ImageObject& image, const PixelRect& part) {
    Value made = makeImage(runtime.heap, part.width(), part.height(), image.depth);
    auto& copy = *made.as<ImageObject>();
    const PixelRect seen = part.within(boundsOf(image));
    for (int64_t y = seen.top; y < seen.bottom && !seen.empty(); ++y)
        std::copy_n(image.bitmap.row(static_cast<int32_t>(y)) + seen.left, seen.width(),
                    copy.bitmap.row(static_cast<int32_t>(y - part.top)) + (seen.left - part.left));
    copy.useAlpha = image.useAlpha;
    copy.bitmap.metadata = image.bitmap.metadata;
    return made;
}

}  // namespace

PixelRect PixelRect::within(const PixelRect& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

PixelRect pixelRectOf(const RectObject& rect) {
    const auto whole = [](const Value& value) -> int64_t {
        return value.isInteger() ? value.integer() : rounded(value.number());
    };
    return {whole(rect.values[0]), whole(rect.values[1]), whole(rect.values[2]), whole(rect.values[3])};
}

Value duplicateImage(Runtime& runtime, const ImageObject& image) {
    return copyOfPart(runtime, image, boundsOf(image));
}

Value cropImage(Runtime& runtime, const ImageObject& image, const PixelRect& part) {
    return copyOfPart(runtime, image, part);
}

void copyPixels(ImageObject& target, const ImageObject& source, const PixelRect& to, const PixelRect& from,
                const CopyOptions& options) {
    const PixelRect seen = to.within(boundsOf(target));
    if (seen.empty() || from.empty()) return;
    const std::vector<int32_t> columns =
        sourcePlaces(to.left, to.width(), from.left, from.width(), seen.left, seen.right);
    const std::vector<int32_t> rows =
        sourcePlaces(to.top, to.height(), from.top, from.height(), seen.top, seen.bottom);
    // If an image is copied onto itself, read from a copy.
    const Bitmap before = &target == &source ? source.bitmap : Bitmap();
    const Bitmap& pixels = &target == &source ? before : source.bitmap;
    const bool sourceAlpha = source.useAlpha && source.depth == 32;
    const bool targetAlpha = target.useAlpha && target.depth == 32;
    for (int64_t y = seen.top; y < seen.bottom; ++y) {
        const int32_t sourceY = rows[static_cast<size_t>(y - seen.top)];
        Pixel* out = target.bitmap.row(static_cast<int32_t>(y));
        for (int64_t x = seen.left; x < seen.right; ++x) {
            const int32_t sourceX = columns[static_cast<size_t>(x - seen.left)];
            if (!source.holds(sourceX, sourceY)) continue;
            const Pixel& pixel = pixels.row(sourceY)[sourceX];
            if (options.leaveOutWhite && isWhite(pixel)) continue;
            int32_t strength = sourceAlpha ? scaled(pixel.alpha, options.blendLevel) : options.blendLevel;
            if (options.mask) strength = scaled(strength, maskLevel(options, sourceX, sourceY));
            layOver(out[x], pixel, strength, targetAlpha);
        }
    }
}

}  // namespace krl::player
