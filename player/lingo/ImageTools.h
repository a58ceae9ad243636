#pragma once

#include "player/lingo/Runtime.h"

/// Image operations for scripts that are independent of the plug-in.
namespace krl::player {

/// A rectangle in pixels; right and bottom are exclusive.
struct PixelRect {
    int64_t left = 0, top = 0, right = 0, bottom = 0;

    int64_t width() const { return right - left; }
    int64_t height() const { return bottom - top; }
    bool empty() const { return width() <= 0 || height() <= 0; }
    PixelRect within(const PixelRect& other) const;
};

PixelRect pixelRectOf(const RectObject& rect);
inline PixelRect boundsOf(const ImageObject& image) { return {0, 0, image.width(), image.height()}; }

/// A copy of an image.
Value duplicateImage(Runtime& runtime, const ImageObject& image);
/// Copies a part of an image; white where the part extends beyond the image.
Value cropImage(Runtime& runtime, const ImageObject& image, const PixelRect& part);

/// Options of `copyPixels`.
struct CopyOptions {
    int32_t blendLevel = 255;
    bool leaveOutWhite = false;         ///< ink 36
    const ImageObject* mask = nullptr;  ///< scales the blend
    int32_t maskX = 0, maskY = 0;       ///< position over the source
};
/// Copies a part of `source`, stretched to fit, over a part of `target`, through the source's alpha if it
/// uses alpha.
void copyPixels(ImageObject& target, const ImageObject& source, const PixelRect& to, const PixelRect& from,
                const CopyOptions& options);

}  // namespace krl::player
