#include <algorithm>

#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"

/// Points, rects and colours.
namespace krl::player {

Value indexedColour(uint8_t index) {
    const Pixel pixel = paletteColour(Palette::System, 8, index);
    return Value::colour(Colour(pixel.red, pixel.green, pixel.blue), ColourForm::PaletteIndex, index);
}

namespace {

const Value& numeric(const Arguments& arguments, size_t index) {
    if (!arguments[index].isNumber()) arguments.mismatch(index, "a number");
    return arguments[index];
}

Value point(Runtime& runtime, const Arguments& arguments) {
    return runtime.heap.make<PointObject>(std::array<Value, 2>{numeric(arguments, 0), numeric(arguments, 1)});
}

Value makeRect(Runtime& runtime, const Value& left, const Value& top, const Value& right,
               const Value& bottom) {
    return runtime.heap.make<RectObject>(std::array<Value, 4>{left, top, right, bottom});
}

/// From four sides or two corners.
Value rect(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() == 2) {
        const auto &first = arguments.object<PointObject>(0), &second = arguments.object<PointObject>(1);
        return makeRect(runtime, first.values[0], first.values[1], second.values[0], second.values[1]);
    }
    return makeRect(runtime, numeric(arguments, 0), numeric(arguments, 1), numeric(arguments, 2),
                    numeric(arguments, 3));
}

const Value& smaller(const Value& a, const Value& b) { return b.number() < a.number() ? b : a; }
const Value& larger(const Value& a, const Value& b) { return b.number() > a.number() ? b : a; }

Value unionOf(Runtime& runtime, const Arguments& arguments) {
    const auto &a = arguments.object<RectObject>(0).values, &b = arguments.object<RectObject>(1).values;
    return makeRect(runtime, smaller(a[0], b[0]), smaller(a[1], b[1]), larger(a[2], b[2]),
                    larger(a[3], b[3]));
}

/// All zeros if the rects do not overlap.
Value intersect(Runtime& runtime, const Arguments& arguments) {
    const auto &a = arguments.object<RectObject>(0).values, &b = arguments.object<RectObject>(1).values;
    const Value &left = larger(a[0], b[0]), &top = larger(a[1], b[1]);
    const Value &right = smaller(a[2], b[2]), &bottom = smaller(a[3], b[3]);
    const Value zero = Value::integer(0);
    if (right.number() < left.number() || bottom.number() < top.number())
        return makeRect(runtime, zero, zero, zero, zero);
    return makeRect(runtime, left, top, right, bottom);
}

Value inside(Runtime&, const Arguments& arguments) {
    const auto& at = arguments.object<PointObject>(0).values;
    const auto& sides = arguments.object<RectObject>(1).values;
    return Value::truth(at[0].number() >= sides[0].number() && at[0].number() < sides[2].number() &&
                        at[1].number() >= sides[1].number() && at[1].number() < sides[3].number());
}

/// The rect with left and top moved by `x1` and `y1`, right and bottom by `x2` and `y2`.
Value moved(Runtime& runtime, const RectObject& sides, const Value& x1, const Value& y1, const Value& x2,
            const Value& y2) {
    const auto sum = [&](size_t side, const Value& by) {
        return operate(runtime, Operator::Add, sides.values[side], by);
    };
    return makeRect(runtime, sum(0, x1), sum(1, y1), sum(2, x2), sum(3, y2));
}

Value inflate(Runtime& runtime, const Arguments& arguments) {
    const Value &x = numeric(arguments, 1), &y = numeric(arguments, 2);
    return moved(runtime, arguments.object<RectObject>(0), negated(runtime, x), negated(runtime, y), x, y);
}

/// A rect moved by an offset; or the position of one string in another, ignoring case.
Value offset(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::Rect)) {
        const Value &x = numeric(arguments, 1), &y = numeric(arguments, 2);
        return moved(runtime, arguments.object<RectObject>(0), x, y, x, y);
    }
    const std::string part = folded(arguments.text(0)), whole = folded(arguments.text(1));
    const size_t found = part.empty() ? std::string::npos : whole.find(part);
    if (found == std::string::npos) return Value::integer(0);
    return Value::integer(1 + countChunks(std::string_view(whole).substr(0, found), ChunkKind::Char, ','));
}

/// Where a coordinate between two sides of one rect is between the same sides of another.
Value mappedBetween(const std::array<Value, 4>& from, const std::array<Value, 4>& to, size_t near,
                    const Value& place) {
    const double start = from[near].number(), extent = from[near + 2].number() - start;
    const double share = extent == 0 ? 0 : (place.number() - start) / extent;
    const double target = to[near].number();
    return Value::integer(rounded(target + share * (to[near + 2].number() - target)));
}

/// A point or rect, moved from one rect to another.
Value map(Runtime& runtime, const Arguments& arguments) {
    const auto &from = arguments.object<RectObject>(1).values, &to = arguments.object<RectObject>(2).values;
    const auto mapped = [&](size_t near, const Value& place) { return mappedBetween(from, to, near, place); };
    if (const auto* point = arguments[0].as<PointObject>())
        return runtime.heap.make<PointObject>(
            std::array<Value, 2>{mapped(0, point->values[0]), mapped(1, point->values[1])});
    const auto& sides = arguments.object<RectObject>(0).values;
    return makeRect(runtime, mapped(0, sides[0]), mapped(1, sides[1]), mapped(0, sides[2]),
                    mapped(1, sides[3]));
}

uint8_t byteOf(const Arguments& arguments, size_t index) { return clampByte(arguments.integer(index)); }

/// From three numbers, a string `#RRGGBB`, or one number that packs all three.
Value rgb(Runtime&, const Arguments& arguments) {
    if (arguments.count() == 1) {
        Colour colour;
        if (arguments[0].isInteger()) {
            const auto word = static_cast<uint32_t>(arguments.integer(0));
            colour = Colour(static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 8),
                            static_cast<uint8_t>(word));
        } else if (!readHexColour(arguments.text(0), colour)) {
            throw HostError("rgb: expected a colour such as \"#FF8000\", not \"" + arguments.text(0) + '"');
        }
        return Value::colour(colour);
    }
    if (arguments.count() == 2) arguments.mismatch(2, "a number");
    return Value::colour(Colour(byteOf(arguments, 0), byteOf(arguments, 1), byteOf(arguments, 2)));
}

Value paletteIndex(Runtime&, const Arguments& arguments) {
    return indexedColour(clampByte(arguments.integer(0)));
}

/// `color(red, green, blue)` or `color(#rgb, red, green, blue)`.
Value color(Runtime& runtime, const Arguments& arguments) {
    if (!arguments[0].is(Kind::Symbol))
        return Value::colour(rgb(runtime, arguments).colour(), ColourForm::Color);
    const SymbolId form = arguments.symbol(0);
    const Arguments rest("color", arguments.from(1));
    if (form == runtime.symbols.identifier("rgb"))
        return Value::colour(rgb(runtime, rest).colour(), ColourForm::Color);
    if (form != runtime.symbols.identifier("paletteIndex")) arguments.mismatch(0, "#rgb or #paletteIndex");
    return paletteIndex(runtime, rest);
}

Value hexString(Runtime& runtime, const Arguments& arguments) {
    return runtime.text(hexColour(arguments.colour(0)));
}

constexpr Builtin kBuiltins[] = {
    {"point", 2, 2, point},
    {"rect", 2, 4, rect},
    {"union", 2, 2, unionOf},
    {"intersect", 2, 2, intersect},
    {"inside", 2, 2, inside},
    {"inflate", 3, 3, inflate},
    {"offset", 2, 3, offset},
    {"map", 3, 3, map},
    {"rgb", 1, 3, rgb},
    {"color", 1, 4, color},
    {"hexString", 1, 1, hexString},
    {"paletteIndex", 1, 1, paletteIndex},
};

}  // namespace

std::span<const Builtin> shapeBuiltins() { return kBuiltins; }

}  // namespace krl::player
