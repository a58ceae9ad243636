#include "player/lingo/ImageTools.h"

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Arithmetic.h"

namespace krl::player {

namespace {

constexpr uint8_t kFull = 255;

/// `a * b / 255`, rounded.
int32_t scaled(int32_t a, int32_t b) { return (a * b + 127) / 255; }

/// `upper` over `lower` with straight alpha; `strength` combines the upper alpha with the blend level.
void layOver(Pixel& lower, const Pixel& upper, int32_t strength, bool lowerUsesAlpha) {
    if (strength == 0) return;
    const int32_t below = scaled(lowerUsesAlpha ? lower.alpha : kFull, kFull - strength);
    const int32_t whole = strength + below;
    for (size_t channel = 0; channel < 3; ++channel)
        lower[channel] =
            static_cast<uint8_t>((upper[channel] * strength + lower[channel] * below + whole / 2) / whole);
    if (lowerUsesAlpha) lower.alpha = static_cast<uint8_t>(std::min<int32_t>(whole, kFull));
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
    return indexOf(*options.mask, options.mask->bitmap.row(static_cast<int32_t>(maskY))[maskX]);
}

Value copyOfPart(Runtime& runtime, const ImageObject& image, const PixelRect& part) {
    Value made = makeImage(runtime.heap, part.width(), part.height(), image.depth, image.palette);
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

namespace {

constexpr std::pair<const char*, Palette> kPalettes[] = {
    {"systemMac", Palette::System}, {"grayscale", Palette::Greys}, {"web216", Palette::Web}};

}  // namespace

Palette paletteNamed(const Runtime& runtime, const Value& name) {
    const std::string wanted = runtime.plain(name);
    for (const auto& [known, palette] : kPalettes)
        if (name.is(Kind::Symbol) && sameText(wanted, known)) return palette;
    throw HostError("expected the palette #systemMac, #grayscale or #web216, not " +
                    shownText(runtime.style(), name));
}

const char* paletteName(Palette palette) { return kPalettes[static_cast<size_t>(palette)].first; }

Pixel pixelFor(const ImageObject& image, const Value& value) {
    if (image.isIndexed() && value.colourForm() == ColourForm::PaletteIndex)
        return paletteColour(image.palette, image.depth, value.paletteIndex());
    const Colour colour = value.colour();
    return {colour.blue(), colour.green(), colour.red(), kFull};
}

uint8_t indexOf(const ImageObject& image, const Pixel& pixel) {
    const bool grey = image.depth == 8 && image.palette == Palette::Greys;
    if (grey || !image.isIndexed()) return static_cast<uint8_t>(kFull - pixel.blue);
    return nearestIndex(image.palette, image.depth, pixel);
}

void settle(ImageObject& image, const PixelRect& part) {
    const PixelRect seen = part.within(boundsOf(image));
    if (seen.empty()) return;
    settle(image.bitmap, image.format(), static_cast<int32_t>(seen.left), static_cast<int32_t>(seen.top),
           static_cast<int32_t>(seen.right), static_cast<int32_t>(seen.bottom));
}

Value duplicateImage(Runtime& runtime, const ImageObject& image) {
    return copyOfPart(runtime, image, boundsOf(image));
}

Value cropImage(Runtime& runtime, const ImageObject& image, const PixelRect& part) {
    return copyOfPart(runtime, image, part);
}

namespace {

/// What a copy reads, and how it lays that over a pixel of the target.
class Brush {
public:
    Brush(const ImageObject& target, const ImageObject& source, const PixelRect& from,
          const CopyOptions& options)
        : source_(source),
          from_(from),
          options_(options),
          // If an image is copied onto itself, read from a copy.
          before_(&target == &source ? source.bitmap : Bitmap()),
          pixels_(&target == &source ? before_ : source.bitmap),
          sourceAlpha_(source.useAlpha && source.depth == 32),
          targetAlpha_(target.useAlpha && target.depth == 32) {
        if (options.ink == Ink::Matte && !sourceAlpha_) matte_ = matteOf(source);
    }
    Brush(const Brush&) = delete;
    Brush& operator=(const Brush&) = delete;

    void lay(Pixel& below, int32_t x, int32_t y) const {
        if (!source_.holds(x, y)) return;
        if (!matte_.empty() &&
            !matte_[static_cast<size_t>(y) * static_cast<size_t>(source_.width()) + static_cast<size_t>(x)])
            return;
        const Pixel& pixel = pixels_.row(y)[x];
        int32_t strength = sourceAlpha_ ? scaled(pixel.alpha, options_.blendLevel) : options_.blendLevel;
        if (options_.mask) strength = scaled(strength, maskLevel(options_, x, y));
        Pixel result{};
        if (inked(options_.ink, options_.colours, pixel, below, result))
            layOver(below, result, strength, targetAlpha_);
    }

    /// The source pixel at a share of the part that is copied.
    void layShare(Pixel& below, double u, double v) const {
        if (u < 0 || v < 0 || u >= 1 || v >= 1) return;
        lay(below, truncate(double(from_.left) + u * double(from_.width())),
            truncate(double(from_.top) + v * double(from_.height())));
    }

private:
    const ImageObject& source_;
    const PixelRect from_;
    const CopyOptions& options_;
    const Bitmap before_;
    const Bitmap& pixels_;
    const bool sourceAlpha_, targetAlpha_;
    std::vector<bool> matte_;
};

/// The map from a quad to the unit square, in perspective: the inverse of the map that takes the corners of
/// the square to those of the quad.
class PerspectiveMap {
public:
    explicit PerspectiveMap(const Quad& quad) {
        const auto [x0, y0] = quad[0];
        const auto [x1, y1] = quad[1];
        const auto [x2, y2] = quad[2];
        const auto [x3, y3] = quad[3];
        const double dx1 = x1 - x2, dx2 = x3 - x2, dx3 = x0 - x1 + x2 - x3;
        const double dy1 = y1 - y2, dy2 = y3 - y2, dy3 = y0 - y1 + y2 - y3;
        const double area = dx1 * dy2 - dx2 * dy1;
        const double g = area == 0 ? 0 : (dx3 * dy2 - dx2 * dy3) / area;
        const double h = area == 0 ? 0 : (dx1 * dy3 - dx3 * dy1) / area;
        const double a = x1 - x0 + g * x1, b = x3 - x0 + h * x3, d = y1 - y0 + g * y1, e = y3 - y0 + h * y3;
        inverse_ = {e - y0 * h,      x0 * h - b,    b * y0 - x0 * e, y0 * g - d,   a - x0 * g,
                    x0 * d - a * y0, d * h - e * g, b * g - a * h,   a * e - b * d};
    }

    /// False where the map has no value.
    bool at(double x, double y, double& u, double& v) const {
        const double w = inverse_[6] * x + inverse_[7] * y + inverse_[8];
        if (w == 0) return false;
        u = (inverse_[0] * x + inverse_[1] * y + inverse_[2]) / w;
        v = (inverse_[3] * x + inverse_[4] * y + inverse_[5]) / w;
        return true;
    }

private:
    std::array<double, 9> inverse_;
};

/// The map from a quad to the unit square in which the sides are divided evenly: a quicker draw of quads that
/// are nearly parallelograms.
class BilinearMap {
public:
    explicit BilinearMap(const Quad& quad)
        : corner_(quad[0]),
          across_(difference(quad[1], quad[0])),
          down_(difference(quad[3], quad[0])),
          bend_(difference(difference(quad[2], quad[1]), down_)) {}

    /// False where the map has no value. `v` solves a quadratic equation.
    bool at(double x, double y, double& u, double& v) const {
        const Vector from = difference({x, y}, corner_);
        const double a = cross(bend_, down_), c = cross(from, across_);
        const double b = cross(across_, down_) + cross(from, bend_);
        if (a == 0) {
            if (b == 0) return false;
            v = -c / b;
        } else {
            const double root = std::sqrt(b * b - 4 * a * c);
            v = (-b - root) / (2 * a);
            if (!(v >= 0 && v < 1)) v = (-b + root) / (2 * a);
        }
        const Vector side = {across_[0] + bend_[0] * v, across_[1] + bend_[1] * v};
        const size_t axis = std::fabs(side[0]) > std::fabs(side[1]) ? 0 : 1;
        if (side[axis] == 0) return false;
        u = (from[axis] - down_[axis] * v) / side[axis];
        return !std::isnan(v);
    }

private:
    using Vector = std::array<double, 2>;
    static Vector difference(const Vector& a, const Vector& b) { return {a[0] - b[0], a[1] - b[1]}; }
    static double cross(const Vector& a, const Vector& b) { return a[0] * b[1] - a[1] * b[0]; }

    Vector corner_, across_, down_, bend_;
};

PixelRect boundsOf(const Quad& quad) {
    const auto [left, right] = std::minmax({quad[0][0], quad[1][0], quad[2][0], quad[3][0]});
    const auto [top, bottom] = std::minmax({quad[0][1], quad[1][1], quad[2][1], quad[3][1]});
    return {truncate(std::floor(left)), truncate(std::floor(top)), truncate(std::ceil(right)),
            truncate(std::ceil(bottom))};
}

template <class Map>
void layThrough(const Map& map, const Brush& brush, ImageObject& target, const PixelRect& seen) {
    for (int64_t y = seen.top; y < seen.bottom; ++y) {
        Pixel* out = target.bitmap.row(static_cast<int32_t>(y));
        for (int64_t x = seen.left; x < seen.right; ++x) {
            double u = 0, v = 0;
            if (map.at(double(x) + 0.5, double(y) + 0.5, u, v)) brush.layShare(out[x], u, v);
        }
    }
}

}  // namespace

void copyIntoQuad(ImageObject& target, const ImageObject& source, const Quad& to, const PixelRect& from,
                  const CopyOptions& options) {
    const PixelRect seen = boundsOf(to).within(boundsOf(target));
    if (seen.empty() || from.empty()) return;
    const Brush brush(target, source, from, options);
    if (options.bilinear)
        layThrough(BilinearMap(to), brush, target, seen);
    else
        layThrough(PerspectiveMap(to), brush, target, seen);
    settle(target, seen);
}

void copyPixels(ImageObject& target, const ImageObject& source, const PixelRect& to, const PixelRect& from,
                const CopyOptions& options) {
    const PixelRect seen = to.within(boundsOf(target));
    if (seen.empty() || from.empty()) return;
    const std::vector<int32_t> columns =
        sourcePlaces(to.left, to.width(), from.left, from.width(), seen.left, seen.right);
    const std::vector<int32_t> rows =
        sourcePlaces(to.top, to.height(), from.top, from.height(), seen.top, seen.bottom);
    const Brush brush(target, source, from, options);
    for (int64_t y = seen.top; y < seen.bottom; ++y) {
        Pixel* out = target.bitmap.row(static_cast<int32_t>(y));
        for (int64_t x = seen.left; x < seen.right; ++x)
            brush.lay(out[x], columns[static_cast<size_t>(x - seen.left)],
                      rows[static_cast<size_t>(y - seen.top)]);
    }
    settle(target, seen);
}

}  // namespace krl::player
