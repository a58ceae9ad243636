#include <algorithm>

#include "core/Numbers.h"
#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/ImageTools.h"
#include "player/pictures/FileAccess.h"

/// Functions and methods of images.
namespace krl::player {

namespace {

constexpr int32_t kOpaque = 255;

Value imageNamed(Runtime& runtime, const std::string& name) {
    if (runtime.pictures)
        if (const Bitmap* found = runtime.pictures->find(name))
            return runtime.heap.make<ImageObject>(Bitmap(*found));
    return runtime.heap.make<ImageObject>(readCheckedPicture(runtime.sandbox.toRead(name)));
}

constexpr int32_t kDepths[] = {1, 2, 4, 8, 16, 24, 32};

/// `image("file")` reads one; `image(width, height, depth, palette)`, with the depth of alpha before the
/// palette or not, creates a white one.
Value image(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() == 1) return imageNamed(runtime, arguments.text(0));
    const int32_t depth = arguments.has(2) ? arguments.integer(2) : 32;
    if (std::find(std::begin(kDepths), std::end(kDepths), depth) == std::end(kDepths))
        throw HostError("image: expected a depth of 1, 2, 4, 8, 16, 24 or 32, not " + std::to_string(depth));
    const size_t last = arguments.count() - 1;
    const bool named = last > 2 && !arguments[last].isNumber() && arguments.has(last);
    return makeImage(runtime.heap, arguments.integer(0), arguments.integer(1), depth,
                     named ? paletteNamed(runtime, arguments[last]) : Palette::System);
}

Value save(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    const std::string& name = arguments.text(1);
    if (runtime.pictures)
        runtime.pictures->saved[name] = picture.bitmap;
    else
        writeCheckedPicture(runtime.sandbox.toWrite(name), picture.bitmap);
    return Value();
}

/// The pixel at a point or two numbers; `next` is the index of the following argument. Null outside the
/// image.
Pixel* pixelAt(const Arguments& arguments, ImageObject& picture, size_t& next) {
    int32_t x, y;
    if (const auto* point = arguments[1].as<PointObject>()) {
        x = rounded(point->values[0].number());
        y = rounded(point->values[1].number());
        next = 2;
    } else {
        x = arguments.integer(1);
        y = arguments.integer(2);
        next = 3;
    }
    return picture.holds(x, y) ? picture.bitmap.row(y) + x : nullptr;
}

/// The pixel as one word with alpha in the highest byte, for `#integer`.
int32_t packed(const Pixel& pixel) {
    return static_cast<int32_t>(uint32_t(pixel.alpha) << 24 | uint32_t(pixel.red) << 16 |
                                uint32_t(pixel.green) << 8 | pixel.blue);
}

Value getPixel(Runtime& runtime, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    size_t next;
    const Pixel* pixel = pixelAt(arguments, picture, next);
    if (!pixel) return Value::integer(0);
    const bool whole =
        arguments[next].is(Kind::Symbol) && arguments[next].symbol() == runtime.symbols.identifier("integer");
    const Colour colour(pixel->red, pixel->green, pixel->blue);
    if (!picture.isIndexed()) return whole ? Value::integer(packed(*pixel)) : Value::colour(colour);
    const uint8_t index = indexOf(picture, *pixel);
    return whole ? Value::integer(index) : Value::colour(colour, ColourForm::PaletteIndex, index);
}

/// A colour leaves alpha unchanged, an integer sets all four bytes or the index.
Value setPixel(Runtime&, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    size_t next;
    Pixel* pixel = pixelAt(arguments, picture, next);
    if (!pixel) return Value::truth(false);
    if (arguments[next].isInteger() && picture.isIndexed()) {
        *pixel = paletteColour(picture.palette, picture.depth, clampByte(arguments.integer(next)));
    } else if (arguments[next].isInteger()) {
        const auto word = static_cast<uint32_t>(arguments.integer(next));
        const auto byte = [word](int shift) { return static_cast<uint8_t>(word >> shift); };
        *pixel = {byte(0), byte(8), byte(16), picture.depth == 32 ? byte(24) : uint8_t{kOpaque}};
    } else {
        if (!arguments[next].is(Kind::Colour)) arguments.mismatch(next, "a colour or an integer");
        const uint8_t alpha = pixel->alpha;
        *pixel = pixelFor(picture, arguments[next]);
        pixel->alpha = alpha;
    }
    const auto place = pixel - picture.bitmap.pixels.data();
    const int64_t x = place % picture.width(), y = place / picture.width();
    settle(picture, {x, y, x + 1, y + 1});
    return Value::truth(true);
}

/// The corners of a quad: a list of four points.
bool quadOf(const Value& value, Quad& quad) {
    const auto* list = value.as<ListObject>();
    if (!list || list->items.size() != quad.size()) return false;
    for (size_t i = 0; i < quad.size(); ++i) {
        const auto* point = list->items[i].as<PointObject>();
        if (!point) return false;
        quad[i] = {point->values[0].number(), point->values[1].number()};
    }
    return true;
}

Value copyPixelsOver(Runtime& runtime, const Arguments& arguments) {
    auto& target = arguments.object<ImageObject>(0);
    const auto& source = arguments.object<ImageObject>(1);
    const PixelRect from = pixelRectOf(arguments.object<RectObject>(3));
    if (arguments.has(4) && !arguments[4].is(Kind::PropertyList)) arguments.mismatch(4, "a property list");
    const auto* list = arguments[4].as<PropertyListObject>();
    const CopyOptions options = list ? copyOptionsOf(runtime, *list) : CopyOptions();
    Quad quad;
    if (quadOf(arguments[2], quad))
        copyIntoQuad(target, source, quad, from, options);
    else if (arguments[2].is(Kind::List))
        arguments.mismatch(2, "a rect or a list of four points");
    else
        copyPixels(target, source, pixelRectOf(arguments.object<RectObject>(2)), from, options);
    return Value();
}

/// An image of 8 bits in greys with one index for each pixel.
template <class Level>
Value maskFrom(Runtime& runtime, const ImageObject& picture, Level&& level) {
    Value made = makeImage(runtime.heap, picture.width(), picture.height(), 8, Palette::Greys);
    std::vector<Pixel>& mask = made.as<ImageObject>()->bitmap.pixels;
    for (size_t i = 0; i < mask.size(); ++i) mask[i] = paletteColour(Palette::Greys, 8, level(i));
    return made;
}

Value createMatte(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    const std::vector<bool> shown = matteOf(picture, arguments.has(1) ? arguments.integer(1) : 0);
    return maskFrom(runtime, picture, [&](size_t i) { return shown[i] ? uint8_t{255} : uint8_t{0}; });
}

/// Black shows, white hides, greys are between.
Value createMask(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    return maskFrom(runtime, picture, [&](size_t i) {
        const Pixel& pixel = picture.bitmap.pixels[i];
        return static_cast<uint8_t>(255 - (pixel.red * 77 + pixel.green * 151 + pixel.blue * 28) / 256);
    });
}

Value trimWhiteSpace(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    return cropImage(runtime, picture, inkedPart(picture));
}

Value flood(Runtime&, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    const bool byPoint = arguments[1].is(Kind::Point);
    const auto whole = [](const Value& value) {
        return value.isInteger() ? value.integer() : rounded(value.number());
    };
    const auto* point = arguments[1].as<PointObject>();
    const int32_t x = byPoint ? whole(point->values[0]) : arguments.integer(1);
    const int32_t y = byPoint ? whole(point->values[1]) : arguments.integer(2);
    const size_t last = byPoint ? 2 : 3;
    if (!arguments[last].is(Kind::Colour)) arguments.mismatch(last, "a colour");
    floodFill(picture, x, y, arguments[last]);
    return Value();
}

/// Reads a picture file into a member.
Value importFileInto(Runtime& runtime, const Arguments& arguments) {
    auto& member = arguments.object<MemberObject>(0);
    member.image = imageNamed(runtime, arguments.text(1));
    return Value();
}

/// A part of an image as another one; or the image of a member becomes its part.
Value crop(Runtime& runtime, const Arguments& arguments) {
    if (auto* member = arguments[0].as<MemberObject>()) {
        const Value whole = runtime.propertyNamed(arguments[0], runtime.symbol("image"));
        const PixelRect part = pixelRectOf(arguments.object<RectObject>(1));
        member->image = cropImage(runtime, *whole.as<ImageObject>(), part);
        return Value();
    }
    return cropImage(runtime, arguments.object<ImageObject>(0), pixelRectOf(arguments.object<RectObject>(1)));
}

/// The alpha channel as a mask.
Value extractAlpha(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    return maskFrom(runtime, picture, [&](size_t i) { return picture.bitmap.pixels[i].alpha; });
}

/// Sets alpha from a mask of the same size or to one level; false if the mask has another size or the image
/// no alpha.
Value setAlpha(Runtime&, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    std::vector<Pixel>& pixels = picture.bitmap.pixels;
    if (picture.depth != 32) return Value::truth(false);
    if (arguments[1].isNumber()) {
        const uint8_t level = clampByte(arguments.integer(1));
        for (Pixel& pixel : pixels) pixel.alpha = level;
        return Value::truth(true);
    }
    const auto& mask = arguments.object<ImageObject>(1);
    const bool fits = mask.depth == 8 && mask.width() == picture.width() && mask.height() == picture.height();
    for (size_t i = 0; fits && i < pixels.size(); ++i) pixels[i].alpha = indexOf(mask, mask.bitmap.pixels[i]);
    return Value::truth(fits);
}

constexpr Builtin kBuiltins[] = {
    {"image", 1, 5, image},
    {"save", 2, 2, save},
    {"getPixel", 2, 4, getPixel},
    {"setPixel", 3, 4, setPixel},
    {"copyPixels", 4, 5, copyPixelsOver},
    {"crop", 2, 2, crop},
    {"trimWhiteSpace", 1, 1, trimWhiteSpace},
    {"createMatte", 1, 2, createMatte},
    {"createMask", 1, 1, createMask},
    {"floodFill", 3, 4, flood},
    {"importFileInto", 2, 3, importFileInto},
    {"extractAlpha", 1, 1, extractAlpha},
    {"setAlpha", 2, 2, setAlpha},
};

}  // namespace

std::span<const Builtin> imageBuiltins() { return kBuiltins; }

}  // namespace krl::player
