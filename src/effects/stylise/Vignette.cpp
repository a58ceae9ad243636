#include <algorithm>
#include <iterator>
#include <limits>
#include <new>

#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Batch.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

/// The shape on the plane: its centre and the half sizes. Halves and hundredths are of whole numbers.
struct Shape {
    int32_t planeWidth, planeHeight;
    int32_t centreX, centreY;
    float radiusX, radiusY;

    Shape(const ImageBuffer& image, int32_t margin, const VignetteSettings& settings)
        : planeWidth(image.width + 2 * margin),
          planeHeight(image.height + 2 * margin),
          centreX(centre(planeWidth, clampTo(settings.offsetX, -100, 100))),
          centreY(centre(planeHeight, clampTo(settings.offsetY, -100, 100))),
          radiusX(radius(image.width, clampTo(settings.scaleX, 0.0f, 2.0f))),
          radiusY(radius(image.height, clampTo(settings.scaleY, 0.0f, 2.0f))) {}

    IndexRange row(VignetteShape shape, int32_t y) const {
        return shape == VignetteShape::Ellipse ? ellipseRow(y) : rectangleRow(y);
    }

    /// Columns of row `y` inside an ellipse: those with (dx / radiusX)^2 + (dy / radiusY)^2 below 1. That
    /// grows with dx, so the last column inside is found by bisection. Where a radius is 0 the centre's own
    /// column or row divides 0 by 0, which counts as inside.
    IndexRange ellipseRow(int32_t y) const {
        const double squareX = double(radiusX) * radiusX, squareY = double(radiusY) * radiusY;
        const double dy = double(y) - centreY, upright = dy * dy / squareY;
        const auto isInside = [&](int64_t dx) {
            return !(double(dx) * double(dx) / squareX + upright >= 1.0);
        };
        int64_t inside = -1, outside = int64_t(std::abs(centreX)) + planeWidth + 1;
        while (outside - inside > 1) {
            const int64_t middle = inside + (outside - inside) / 2;
            (isInside(middle) ? inside : outside) = middle;
        }
        return {within(centreX - inside, planeWidth), within(centreX + inside + 1, planeWidth)};
    }

    /// Columns of row `y` inside a rectangle.
    IndexRange rectangleRow(int32_t y) const {
        if (y < truncate(centreY - double(radiusY)) || y >= truncate(centreY + double(radiusY))) return {};
        return {within(truncate(centreX - double(radiusX)), planeWidth),
                within(truncate(centreX + double(radiusX)), planeWidth)};
    }

private:
    static float radius(int32_t size, float scale) {
        const int32_t half = size / 2;
        return static_cast<float>(double(half) * scale);
    }
    static int32_t centre(int32_t size, int32_t percent) {
        return size / 2 + wrapMultiply(size, percent) / 100;
    }
    static int32_t within(int64_t column, int32_t size) {
        return static_cast<int32_t>(clampTo<int64_t>(column, 0, size));
    }
};

/// Entries of a plane around the picture, which is limited to 2 GiB at four bytes an entry.
size_t planeEntries(const ImageBuffer& image, int32_t margin) {
    const int64_t width = image.width + 2 * int64_t(margin), height = image.height + 2 * int64_t(margin);
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max() / int64_t(sizeof(int32_t));
    if (width > kMost || height > kMost || width * height > kMost) throw std::bad_alloc();
    return static_cast<size_t>(width * height);
}

/// Fills the plane with the strength of the cover at every place.
Status drawMask(const ImageEngine& engine, const Shape& shape, const VignetteSettings& settings,
                uint8_t* plane) {
    const uint8_t strength = clampByte(settings.transparency);
    const uint8_t inside = settings.isInverted ? strength : 0, outside = settings.isInverted ? 0 : strength;
    return forEachLineRange(engine, shape.planeHeight, [&](IndexRange rows) {
        for (int32_t y = rows.first; y < rows.last; ++y) {
            uint8_t* line = plane + ptrdiff_t(y) * shape.planeWidth;
            const IndexRange columns = shape.row(settings.shape, y);
            std::fill(line, line + shape.planeWidth, outside);
            if (columns.first < columns.last) std::fill(line + columns.first, line + columns.last, inside);
        }
    });
}

/// How much of the cover each byte of a span of pixels takes; `places` has a 1 in the bytes that do.
KRL_VECTOR_LEVELS
void spreadMask(const uint8_t* mask, size_t count, uint32_t places, Pixel* shares) {
    for (size_t i = 0; i < count; ++i) storeWord(shares[i], mask[i] * places);
}

/// byte = share * cover / 255 + (255 - share) * byte / 255, each quotient truncated
KRL_VECTOR_LEVELS
void coverBytes(uint8_t* bytes, const uint8_t* shares, const uint8_t* cover, size_t count) {
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(scaledByte(shares[i], cover[i]) +
                                        scaledByte(static_cast<uint8_t>(255 - shares[i]), bytes[i]));
}

/// Covers the picture by the part of the mask at its place, `stride` bytes a row. A byte that takes no share
/// stays.
Status cover(const ImageEngine& engine, const uint8_t* mask, int32_t stride,
             const VignetteSettings& settings) {
    const bool isColour = settings.target == VignetteTarget::RGB;
    const Colour colour = isColour ? settings.colour : Colour(0, 0, 0);
    const uint32_t places = isColour ? 0x00010101u : 0x01000000u;
    Pixel covering[kBatchPixels];
    std::fill(std::begin(covering), std::end(covering),
              Pixel{colour.blue(), colour.green(), colour.red(), 0});
    const auto width = static_cast<size_t>(engine.buffer()->width);
    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        Pixel shares[kBatchPixels];
        forEachBatch(width, [&](size_t x, size_t count) {
            spreadMask(mask + ptrdiff_t(y) * stride + x, count, places, shares);
            coverBytes(firstByte(row + x), firstByte(shares), firstByte(covering), count * 4);
        });
    });
}

}  // namespace

/// A colour, or transparency, laid over what is outside a soft shape.
Status vignette(ImageEngine& engine, const VignetteSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const int32_t margin = std::max(settings.blur, 0);
    const Scratch<uint8_t> plane(planeEntries(image, margin));
    const Shape shape(image, margin, settings);
    const Status drawn = drawMask(engine, shape, settings, plane.data());
    if (drawn) return drawn;
    const Status blurred =
        TentBlur(engine, false).blurBytes(plane.data(), shape.planeHeight, shape.planeWidth, margin);
    if (blurred) return blurred;
    return cover(engine, plane.data() + ptrdiff_t(margin) * shape.planeWidth + margin, shape.planeWidth,
                 settings);
}

void describeVignette(Catalogue& catalogue) {
    constexpr NumberRange scale{.from = 0, .to = 2, .example = 0.9, .least = 0, .most = 2};
    constexpr NumberRange offset{.from = -100, .to = 100, .example = 0, .least = -100, .most = 100};
    catalogue.add("krlImageVignette")
        .summary("Lets the picture fade into a colour, or out of sight, toward its edges.")
        .words("dark corners, border, frame, edges, spotlight, lens")
        .symbol("shape", {{"ellipse", VignetteShape::Ellipse}, {"rectangle", VignetteShape::Rectangle}},
                refused("Vignette invalid shape input (Image)"), "outline of what stays clear")
        .colour("theColor", Colour(20, 12, 8), "what the edges fade into")
        .integer("transparency",
                 {.from = 0, .to = 255, .example = 200, .least = 0, .most = 255, .neutral = 0},
                 "strength of the fade; 255 covers")
        .real("scaleX", scale, "width of the shape; 1.0 is the picture's")
        .real("scaleY", scale, "height of the shape; 1.0 is the picture's")
        .integer("offsetX", offset, "shift to the right, in percent of the width")
        .integer("offsetY", offset, "shift down, in percent of the height")
        .integer("blur", {.from = 0, .to = 200, .example = 60, .least = 0, .pixels = true},
                 "softness of the shape's edge, in pixels")
        .symbol("colourOrAlpha", {{"RGB", VignetteTarget::RGB}, {"ALPHA", VignetteTarget::Alpha}},
                refused("Vignette invalid colourOrAlpha type input (Image)"),
                "fades into the colour, or into transparency")
        .symbol("invert", {{"false", false}, {"true", true}},
                refused("Vignette invalid invert input (Image)"), "covers the inside in place of the edges")
        .inputFailure("Vignette input failure (Image)")
        .failed("Failed Vignette function (Image)")
        .does([](Call& call) {
            return runEffect(call, [](ImageEngine& engine, std::span<const ArgumentValue> given) {
                return vignette(engine, {.shape = given[0].as<VignetteShape>(),
                                         .colour = given[1].colour,
                                         .transparency = given[2].integer,
                                         .scaleX = given[3].as<float>(),
                                         .scaleY = given[4].as<float>(),
                                         .offsetX = given[5].integer,
                                         .offsetY = given[6].integer,
                                         .blur = given[7].integer,
                                         .target = given[8].as<VignetteTarget>(),
                                         .isInverted = given[9].as<bool>()});
            });
        });
}

}  // namespace krl
