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

/// `image("file")` reads one, `image(width, height, depth)` creates a white one.
Value image(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() == 1) return imageNamed(runtime, arguments.text(0));
    const int32_t depth = arguments.has(2) ? arguments.integer(2) : 32;
    if (depth != 8 && depth != 16 && depth != 24 && depth != 32)
        throw HostError("image: expected a depth of 8, 16, 24 or 32, not " + std::to_string(depth));
    return makeImage(runtime.heap, arguments.integer(0), arguments.integer(1), depth);
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
    if (whole) return Value::integer(picture.depth == 8 ? pixel->blue : packed(*pixel));
    return Value::colour(Colour(pixel->red, pixel->green, pixel->blue));
}

/// A colour leaves alpha unchanged, an integer sets all four bytes; in a mask both become grey.
Value setPixel(Runtime&, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    size_t next;
    Pixel* pixel = pixelAt(arguments, picture, next);
    if (!pixel) return Value::truth(false);
    if (picture.depth == 8) {
        const int32_t level =
            arguments[next].isInteger() ? arguments.integer(next) : arguments.colour(next).red();
        const uint8_t grey = clampByte(level);
        *pixel = {grey, grey, grey, kOpaque};
    } else if (arguments[next].isInteger()) {
        const auto word = static_cast<uint32_t>(arguments.integer(next));
        const auto byte = [word](int shift) { return static_cast<uint8_t>(word >> shift); };
        *pixel = {byte(0), byte(8), byte(16), picture.depth == 32 ? byte(24) : uint8_t{kOpaque}};
    } else {
        const Colour colour = arguments.colour(next);
        *pixel = {colour.blue(), colour.green(), colour.red(), pixel->alpha};
    }
    return Value::truth(true);
}

Value* entryOf(Runtime& runtime, const Value& list, const char* name) {
    auto* properties = list.as<PropertyListObject>();
    if (!properties) return nullptr;
    const Value key = Value::symbol(runtime.symbols.identifier(name));
    const auto* entry = findEntry(runtime.symbols, *properties, key);
    return entry ? const_cast<Value*>(&entry->value) : nullptr;
}

/// `fill(rect, colour)`, `fill(left, top, right, bottom, colour)`; the colour can be a
/// list that also names the only supported shape.
Value fill(Runtime& runtime, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    const bool byRect = arguments[1].is(Kind::Rect);
    const size_t last = byRect ? 2 : 5;
    PixelRect area = byRect ? pixelRectOf(arguments.object<RectObject>(1))
                            : PixelRect{arguments.integer(1), arguments.integer(2), arguments.integer(3),
                                        arguments.integer(4)};
    const Value* listed = entryOf(runtime, arguments[last], "color");
    if (listed && !listed->is(Kind::Colour)) arguments.mismatch(last, "a list with a colour under #color");
    const Value* shape = entryOf(runtime, arguments[last], "shapeType");
    if (shape && !(shape->is(Kind::Symbol) && shape->symbol() == runtime.symbols.identifier("rect")))
        throw HostError("fill: expected the #shapeType #rect, not " + shownText(runtime.style(), *shape));
    const Colour colour = listed ? listed->colour() : arguments.colour(last);
    area = area.within(boundsOf(picture));
    for (int64_t y = area.top; y < area.bottom; ++y)
        for (int64_t x = area.left; x < area.right; ++x) {
            Pixel& pixel = picture.bitmap.row(static_cast<int32_t>(y))[x];
            pixel = {colour.blue(), colour.green(), colour.red(), pixel.alpha};
        }
    return Value::truth(true);
}

CopyOptions copyOptions(Runtime& runtime, const Arguments& arguments) {
    CopyOptions options;
    const auto number = [&](const Value& value, const char* name) {
        if (!value.isNumber())
            throw HostError(std::string("copyPixels: expected a number under #") + name + ", not " +
                            kindName(value.kind()));
        return value.isInteger() ? value.integer() : rounded(value.number());
    };
    if (const Value* level = entryOf(runtime, arguments[4], "blendLevel"))
        options.blendLevel = clampTo(number(*level, "blendLevel"), 0, kOpaque);
    else if (const Value* percent = entryOf(runtime, arguments[4], "blend"))
        options.blendLevel = rounded(clampTo(number(*percent, "blend"), 0, 100) * 2.55);
    if (const Value* ink = entryOf(runtime, arguments[4], "ink")) {
        const bool copy = ink->is(Kind::Symbol) && ink->symbol() == runtime.symbols.identifier("copy");
        const int32_t kind = copy ? 0 : number(*ink, "ink");
        if (kind != 0 && kind != 36)
            throw HostError("copyPixels: expected the ink 0 or 36, not " + std::to_string(kind));
        options.leaveOutWhite = kind == 36;
    }
    if (const Value* mask = entryOf(runtime, arguments[4], "maskImage")) {
        options.mask = mask->as<ImageObject>();
        if (!options.mask)
            throw HostError("copyPixels: expected an image under #maskImage, not " + kindName(mask->kind()));
    }
    if (const Value* offset = entryOf(runtime, arguments[4], "maskOffset")) {
        const auto* point = offset->as<PointObject>();
        if (!point)
            throw HostError("copyPixels: expected a point under #maskOffset, not " +
                            kindName(offset->kind()));
        options.maskX = number(point->values[0], "maskOffset");
        options.maskY = number(point->values[1], "maskOffset");
    }
    return options;
}

Value copyPixelsOver(Runtime& runtime, const Arguments& arguments) {
    auto& target = arguments.object<ImageObject>(0);
    const auto& source = arguments.object<ImageObject>(1);
    const PixelRect to = pixelRectOf(arguments.object<RectObject>(2));
    const PixelRect from = pixelRectOf(arguments.object<RectObject>(3));
    if (arguments.has(4) && !arguments[4].is(Kind::PropertyList)) arguments.mismatch(4, "a property list");
    copyPixels(target, source, to, from, copyOptions(runtime, arguments));
    return Value();
}

Value crop(Runtime& runtime, const Arguments& arguments) {
    return cropImage(runtime, arguments.object<ImageObject>(0), pixelRectOf(arguments.object<RectObject>(1)));
}

/// The alpha channel as a mask.
Value extractAlpha(Runtime& runtime, const Arguments& arguments) {
    const auto& picture = arguments.object<ImageObject>(0);
    Value made = makeImage(runtime.heap, picture.width(), picture.height(), 8);
    std::vector<Pixel>& mask = made.as<ImageObject>()->bitmap.pixels;
    std::transform(picture.bitmap.pixels.begin(), picture.bitmap.pixels.end(), mask.begin(),
                   [](const Pixel& pixel) {
                       return Pixel{pixel.alpha, pixel.alpha, pixel.alpha, kOpaque};
                   });
    return made;
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
    for (size_t i = 0; fits && i < pixels.size(); ++i) pixels[i].alpha = mask.bitmap.pixels[i].blue;
    return Value::truth(fits);
}

constexpr Builtin kBuiltins[] = {
    {"image", 1, 4, image},       {"save", 2, 2, save},
    {"getPixel", 2, 4, getPixel}, {"setPixel", 3, 4, setPixel},
    {"fill", 3, 6, fill},         {"copyPixels", 4, 5, copyPixelsOver},
    {"crop", 2, 2, crop},         {"extractAlpha", 1, 1, extractAlpha},
    {"setAlpha", 2, 2, setAlpha},
};

}  // namespace

std::span<const Builtin> imageBuiltins() { return kBuiltins; }

}  // namespace krl::player
