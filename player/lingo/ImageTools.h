#pragma once

#include "player/lingo/Inks.h"

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

/// The palette that a symbol names; throws `HostError` for others.
Palette paletteNamed(const Runtime& runtime, const Value& name);
/// The symbol of a palette, such as `systemMac`.
const char* paletteName(Palette palette);
/// A colour or palette index as the image has it.
Pixel pixelFor(const ImageObject& image, const Value& colour);
/// The index of a pixel in the palette of an image of up to 8 bits. In a mask, this is how much of it shows:
/// white nothing, black all.
uint8_t indexOf(const ImageObject& image, const Pixel& pixel);
/// Gives `part`, after drawing on it, the nearest colours that the image's format has.
void settle(ImageObject& image, const PixelRect& part);

/// A copy of an image.
Value duplicateImage(Runtime& runtime, const ImageObject& image);
/// Copies a part of an image; white where the part extends beyond the image.
Value cropImage(Runtime& runtime, const ImageObject& image, const PixelRect& part);

/// Options of `copyPixels`.
struct CopyOptions {
    Ink ink = Ink::Copy;
    InkColours colours;
    int32_t blendLevel = 255;
    bool levelIsSet = false;            ///< `#blendLevel` goes before `#blend`
    const ImageObject* mask = nullptr;  ///< scales the blend; black shows all
    int32_t maskX = 0, maskY = 0;       ///< position over the source
    bool bilinear = false;              ///< how quads are drawn, instead of in perspective
};
CopyOptions copyOptionsOf(const Runtime& runtime, const PropertyListObject& list);
std::vector<std::string> copyOptionNames();

/// Four corners of the target: where the upper left, upper right, lower right and lower left of the source
/// go.
using Quad = std::array<std::array<double, 2>, 4>;
/// Copies a part of `source` into a quad.
void copyIntoQuad(ImageObject& target, const ImageObject& source, const Quad& to, const PixelRect& from,
                  const CopyOptions& options);

/// Which pixels the matte of an image shows: those that no path of white pixels joins to its edge, or, with
/// alpha, those with more than `level`.
std::vector<bool> matteOf(const ImageObject& image, int32_t level = 0);
/// Fills the pixel at `x`, `y`, and those of its colour that are joined to it, with another colour.
void floodFill(ImageObject& image, int32_t x, int32_t y, const Value& colour);
/// The smallest part of an image that holds all pixels that are not white.
PixelRect inkedPart(const ImageObject& image);

/// Copies a part of `source`, stretched to fit, over a part of `target`, through the source's alpha if it
/// uses alpha.
void copyPixels(ImageObject& target, const ImageObject& source, const PixelRect& to, const PixelRect& from,
                const CopyOptions& options);

}  // namespace krl::player
