#include <algorithm>
#include <cmath>

#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/ImageTools.h"

/// `fill` and `draw`: rects, ovals, rects with round corners, and lines.
namespace krl::player {

namespace {

enum class ShapeType { Rect, Oval, RoundRect, Line };
constexpr const char* kShapes[] = {"rect", "oval", "roundRect", "line"};
constexpr double kCornerRadius = 8;

/// What the last argument says: a colour, or a list of options.
struct Pen {
    ShapeType shape;
    Pixel colour, border;
    int32_t lineSize = 0;
};

/// A colour, or in an image with a palette also an index.
bool readColour(const Arguments& arguments, const Value& value, Pixel& colour) {
    const auto& picture = arguments.object<ImageObject>(0);
    if (value.is(Kind::Colour))
        colour = pixelFor(picture, value);
    else if (value.isInteger() && picture.isIndexed())
        colour = paletteColour(picture.palette, picture.depth, clampByte(value.integer()));
    else
        return false;
    return true;
}

Pixel colourIn(const Arguments& arguments, const char* name, const Value& value) {
    Pixel colour;
    if (!readColour(arguments, value, colour))
        throw HostError(std::string(arguments.function()) + ": expected a colour under #" + name + ", not " +
                        kindName(value.kind()));
    return colour;
}

ShapeType shapeIn(const Runtime& runtime, const Arguments& arguments, const Value& value) {
    const std::string name = runtime.plain(value);
    for (size_t i = 0; i < std::size(kShapes); ++i)
        if (sameText(name, kShapes[i])) return static_cast<ShapeType>(i);
    throw HostError(std::string(arguments.function()) +
                    ": expected the #shapeType #rect, #oval, #roundRect or " + "#line, not " +
                    shownText(runtime.style(), value));
}

Pen penOf(const Runtime& runtime, const Arguments& arguments, size_t last, ShapeType usual) {
    constexpr Pixel kBlack{0, 0, 0, 255};
    Pen pen{usual, kBlack, kBlack, usual == ShapeType::Line ? 1 : 0};
    const auto* list = arguments[last].as<PropertyListObject>();
    if (!list) {
        if (!readColour(arguments, arguments[last], pen.colour))
            arguments.mismatch(last, "a colour or a property list");
        pen.border = pen.colour;
        return pen;
    }
    bool bordered = false;
    for (const auto& [key, value] : list->entries) {
        const std::string name = runtime.plain(key);
        if (sameText(name, "shapeType")) {
            pen.shape = shapeIn(runtime, arguments, value);
        } else if (sameText(name, "color")) {
            pen.colour = colourIn(arguments, "color", value);
        } else if (sameText(name, "bgColor")) {
            pen.border = colourIn(arguments, "bgColor", value);
            bordered = true;
        } else if (sameText(name, "lineSize") && value.isNumber()) {
            pen.lineSize = std::max(0, value.isInteger() ? value.integer() : rounded(value.number()));
        } else {
            throw HostError(std::string(arguments.function()) + ": there is no option #" + name + " with " +
                            kindName(value.kind()) +
                            didYouMean(name, {"shapeType", "color", "bgColor", "lineSize"}));
        }
    }
    if (!bordered) pen.border = pen.colour;
    return pen;
}

/// Whether a place is in a shape that fills the rect from 0, 0 to `width`, `height`.
bool within(ShapeType shape, double x, double y, double width, double height) {
    if (width <= 0 || height <= 0 || x < 0 || y < 0 || x >= width || y >= height) return false;
    if (shape == ShapeType::Rect) return true;
    const double radiusX = shape == ShapeType::Oval ? width / 2 : std::min(kCornerRadius, width / 2);
    const double radiusY = shape == ShapeType::Oval ? height / 2 : std::min(kCornerRadius, height / 2);
    const double acrossBy = std::max({radiusX - x, x - (width - radiusX), 0.0}) / radiusX;
    const double downBy = std::max({radiusY - y, y - (height - radiusY), 0.0}) / radiusY;
    return acrossBy * acrossBy + downBy * downBy <= 1;
}

void paint(Pixel& pixel, const Pixel& colour) {
    pixel = {colour.blue, colour.green, colour.red, pixel.alpha};
}

/// The border belongs to the shape; its inside is left alone unless it is filled.
void paintShape(ImageObject& picture, const PixelRect& area, const Pen& pen, bool filled) {
    const PixelRect seen = area.within(boundsOf(picture));
    const double width = double(area.width()), height = double(area.height()), line = pen.lineSize;
    for (int64_t y = seen.top; y < seen.bottom; ++y)
        for (int64_t x = seen.left; x < seen.right; ++x) {
            const double atX = double(x - area.left) + 0.5, atY = double(y - area.top) + 0.5;
            if (!within(pen.shape, atX, atY, width, height)) continue;
            const bool inside =
                line == 0 || within(pen.shape, atX - line, atY - line, width - 2 * line, height - 2 * line);
            Pixel& pixel = picture.bitmap.row(static_cast<int32_t>(y))[x];
            if (!inside)
                paint(pixel, filled ? pen.border : pen.colour);
            else if (filled)
                paint(pixel, pen.colour);
        }
}

/// From corner to corner, both included, with a square pen.
void paintLine(ImageObject& picture, const PixelRect& ends, const Pen& pen) {
    const int64_t across = ends.right - ends.left, down = ends.bottom - ends.top;
    const int64_t steps = std::max<int64_t>({std::abs(across), std::abs(down), 1});
    const int64_t size = std::max(pen.lineSize, 1);
    const PixelRect all = boundsOf(picture);
    const int64_t farthest = int64_t{1} << 24;
    if (steps > farthest) throw HostError("draw: the line is longer than 16777216 pixels");
    for (int64_t step = 0; step <= steps; ++step) {
        const int64_t left = ends.left + (2 * across * step + steps) / (2 * steps) - (size - 1) / 2;
        const int64_t top = ends.top + (2 * down * step + steps) / (2 * steps) - (size - 1) / 2;
        const PixelRect dot = PixelRect{left, top, left + size, top + size}.within(all);
        for (int64_t y = dot.top; y < dot.bottom; ++y)
            for (int64_t x = dot.left; x < dot.right; ++x)
                paint(picture.bitmap.row(static_cast<int32_t>(y))[x], pen.colour);
    }
}

/// The area that the arguments begin with: a rect, two points, or four numbers; `last` is the argument after.
PixelRect areaOf(const Arguments& arguments, size_t& last) {
    last = 2;
    if (arguments[1].is(Kind::Rect)) return pixelRectOf(arguments.object<RectObject>(1));
    if (arguments[1].is(Kind::Point)) {
        const auto &from = arguments.object<PointObject>(1).values,
                   &to = arguments.object<PointObject>(2).values;
        last = 3;
        return pixelRectOf(RectObject({from[0], from[1], to[0], to[1]}));
    }
    last = 5;
    return {arguments.integer(1), arguments.integer(2), arguments.integer(3), arguments.integer(4)};
}

void paintWith(ImageObject& picture, const PixelRect& area, const Pen& pen, bool filled) {
    if (pen.shape != ShapeType::Line) {
        paintShape(picture, area, pen, filled);
        return settle(picture, area);
    }
    paintLine(picture, area, pen);
    settle(picture, boundsOf(picture));
}

Value fill(Runtime& runtime, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    if (const auto* rects = arguments[1].as<ListObject>()) {
        const Pen pen = penOf(runtime, arguments, 2, ShapeType::Rect);
        for (const Value& rect : rects->items) {
            if (!rect.is(Kind::Rect)) arguments.mismatch(1, "a list of rects");
            paintWith(picture, pixelRectOf(*rect.as<RectObject>()), pen, true);
        }
        return Value::truth(true);
    }
    size_t last;
    const PixelRect area = areaOf(arguments, last);
    paintWith(picture, area, penOf(runtime, arguments, last, ShapeType::Rect), true);
    return Value::truth(true);
}

Value draw(Runtime& runtime, const Arguments& arguments) {
    auto& picture = arguments.object<ImageObject>(0);
    size_t last;
    const PixelRect area = areaOf(arguments, last);
    Pen pen = penOf(runtime, arguments, last, ShapeType::Line);
    pen.lineSize = std::max(pen.lineSize, 1);
    paintWith(picture, area, pen, false);
    return Value::truth(true);
}

constexpr Builtin kBuiltins[] = {
    {"fill", 3, 6, fill},
    {"draw", 3, 6, draw},
};

}  // namespace

std::span<const Builtin> drawBuiltins() { return kBuiltins; }

}  // namespace krl::player
