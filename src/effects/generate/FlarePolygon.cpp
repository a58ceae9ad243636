#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/Bands.h"
#include "core/Numbers.h"
#include "core/Scratch.h"
#include "effects/generate/FlareElements.h"
#include "effects/generate/ScanConversion.h"
#include "kernels/blur/TentBlur.h"

namespace krl {

namespace {

/// With more corners than this a polygon is the same circle on any picture.
constexpr int32_t kMostCorners = 1 << 20;

std::vector<PolygonCorner> cornersOf(const FlareElement& polygon) {
    const int32_t count = clampTo(polygon.count, 1, kMostCorners);
    const double radius = polygon.radius > 0 ? polygon.radius : 1.0;
    std::vector<PolygonCorner> corners;
    corners.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        double degrees = i * (360.0 / count) + polygon.angle;
        if (degrees >= 360) degrees -= 360;
        const FlarePlace place = placeOnCircle(polygon.origin, degrees, radius);
        if (!std::isfinite(place.x) || !std::isfinite(place.y)) return {};
        corners.push_back({place.x, place.y});
    }
    return corners;
}

/// The polygon's light: a plane of bytes, the size of the picture.
class ShapeMask {
public:
    ShapeMask(const FlareState& state, uint8_t level)
        : height_(state.image.height),
          width_(state.image.width),
          level_(level),
          cells_(size_t(height_) * size_t(width_)),
          blur_(*state.engine) {
        std::ranges::fill(cells_, uint8_t{0});
    }

    void fill(const std::vector<PolygonCorner>& corners) {
        scanPolygon(corners, {0, 0, width_, height_}, [this](int32_t y, int32_t left, int32_t right) {
            std::memset(row(y) + left, level_, size_t(right - left));
        });
    }

    /// Grows the shape by the reach of a blur.
    void expand(int32_t radius) {
        if (radius <= 0) return;
        blurBy(radius);
        for (uint8_t& cell : cells_) cell = cell ? level_ : 0;
    }

    void soften(int32_t radius) {
        if (radius > 0) blurBy(radius);
    }

    uint8_t* row(int32_t y) const { return cells_.data() + size_t(y) * size_t(width_); }

private:
    void blurBy(int32_t radius) {
        leftOutWithoutThreads(blur_.blurBytes(cells_.data(), height_, width_, radius));
    }

    int32_t height_, width_;
    uint8_t level_;
    Scratch<uint8_t> cells_;
    TentBlur blur_;
};

}  // namespace

void paintPolygon(const FlareState& state, const FlareElement& polygon) {
    ShapeMask mask(state, static_cast<uint8_t>(truncate(polygon.brightness)));
    mask.fill(cornersOf(polygon));
    mask.expand(polygon.expandShape);
    mask.soften(polygon.shapeBlur);

    const FlarePlot plot(state, polygon);
    for (int32_t y = 0; y < state.image.height; ++y) {
        const uint8_t* values = mask.row(y);
        Pixel* pixels = state.image.row(y);
        for (int32_t x = 0; x < state.image.width; ++x)
            if (values[x] != 0 || !plot.zeroIsNothing()) plot(pixels[x], values[x]);
    }
}

}  // namespace krl
