#include <algorithm>
#include <limits>
#include <new>

#include "core/Bands.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/stylise/Stylise.h"
#include "kernels/blend/AlphaScale.h"
#include "kernels/blur/TentBlur.h"

namespace krl {

namespace {

/// A shape on a plane, and how it reaches there. Halves and hundredths are of whole numbers.
struct Shape {
    int32_t planeWidth, planeHeight;
    int32_t centreX, centreY;
    float radiusX, radiusY;

    Shape(const ImageBuffer& image, int32_t margin, float scaleX, float scaleY, int32_t offsetX,
          int32_t offsetY)
        : planeWidth(image.width + 2 * margin),
          planeHeight(image.height + 2 * margin),
          centreX(centre(planeWidth, offsetX)),
          centreY(centre(planeHeight, offsetY)),
          radiusX(radius(image.width, scaleX)),
          radiusY(radius(image.height, scaleY)) {}

    /// Columns of row `y` inside an ellipse. Being outside sets in at some distance from the centre and
    /// stays, so the distance is found by halving. Where a radius is 0 the centre's own column or row
    /// divides 0 by 0, which is not outside.
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

/// Entries of a plane around the picture; one that would take 2^31 bytes in words is not to be had.
size_t planeEntries(const ImageBuffer& image, int32_t margin) {
    const int64_t width = image.width + 2 * int64_t(margin), height = image.height + 2 * int64_t(margin);
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max() / int64_t(sizeof(int32_t));
    if (width > kMost || height > kMost || width * height > kMost) throw std::bad_alloc();
    return static_cast<size_t>(width * height);
}

constexpr int32_t kRun = 256;

/// How much of the cover each byte of a run of pixels takes; `places` has a 1 in the bytes that do.
KRL_VECTOR_LEVELS
void spreadMask(const uint8_t* mask, int32_t count, uint32_t places, Pixel* shares) {
    for (int32_t i = 0; i < count; ++i) storeWord(shares[i], mask[i] * places);
}

KRL_VECTOR_LEVELS
void coverBytes(uint8_t* bytes, const uint8_t* shares, const uint8_t* cover, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(scaledByte(shares[i], cover[i]) +
                                        scaledByte(static_cast<uint8_t>(255 - shares[i]), bytes[i]));
}

/// Covers the picture by the part of the mask that lies under it. A byte that takes no share stays.
Status cover(const ImageEngine& engine, const uint8_t* plane, int32_t planeWidth, int32_t margin,
             Colour colour, VignetteTarget target) {
    Pixel coverSpan[kRun];
    std::fill(coverSpan, coverSpan + kRun,
              target == VignetteTarget::RGB ? Pixel{colour.blue(), colour.green(), colour.red(), 0}
                                            : Pixel{0, 0, 0, 0});
    const uint32_t places = target == VignetteTarget::RGB ? 0x00010101u : 0x01000000u;
    const int32_t width = engine.buffer()->width;
    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        const uint8_t* mask = plane + ptrdiff_t(y + margin) * planeWidth + margin;
        Pixel shares[kRun];
        for (int32_t x = 0; x < width; x += kRun) {
            const int32_t count = std::min(kRun, width - x);
            spreadMask(mask + x, count, places, shares);
            coverBytes(firstByte(row + x), firstByte(shares), firstByte(coverSpan), count * 4);
        }
    });
}

}  // namespace

Status vignette(ImageEngine& engine, VignetteShape shape, Colour colour, int32_t transparency, float scaleX,
                float scaleY, int32_t offsetX, int32_t offsetY, int32_t blur, VignetteTarget target,
                bool isInverted) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const int32_t margin = std::max(blur, 0);
    const Scratch<uint8_t> plane(planeEntries(image, margin));
    const Shape figure(image, margin, clampTo(scaleX, 0.0f, 2.0f), clampTo(scaleY, 0.0f, 2.0f),
                       clampTo(offsetX, -100, 100), clampTo(offsetY, -100, 100));
    const uint8_t strength = clampByte(transparency);
    const uint8_t inside = isInverted ? strength : 0, outside = isInverted ? 0 : strength;

    const Status drawn = forEachLineRange(engine, figure.planeHeight, [&](IndexRange rows) {
        for (int32_t y = rows.first; y < rows.last; ++y) {
            uint8_t* line = plane.data() + ptrdiff_t(y) * figure.planeWidth;
            const IndexRange columns =
                shape == VignetteShape::Ellipse ? figure.ellipseRow(y) : figure.rectangleRow(y);
            std::fill(line, line + figure.planeWidth, outside);
            if (columns.first < columns.last) std::fill(line + columns.first, line + columns.last, inside);
        }
    });
    if (drawn) return drawn;
    if (margin > 0)
        TentBlur(engine.getThreadCount())
            .blurBytes(plane.data(), figure.planeHeight, figure.planeWidth, margin);
    return cover(engine, plane.data(), figure.planeWidth, margin, colour, target);
}

}  // namespace krl
