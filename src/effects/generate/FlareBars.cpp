#include <cmath>
#include <vector>

#include "core/Doubts.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "effects/generate/FlareElements.h"
#include "kernels/sample/Trigonometry.h"

namespace krl {

namespace {

/// The single-precision factor from degrees to radians, by which bars turn.
constexpr float kTurnFactor = 0.01745329238474369f;

using Sine = double (*)(double radians);

/// Light at `distance` from the middle of a bar that reaches `half` to each side.
using BarProfile = double (*)(double brightness, double distance, double half, Sine sineOf);

double tent(double brightness, double distance, double half, Sine) {
    return brightness * (half - distance) / half;
}
double dome(double brightness, double distance, double half, Sine sineOf) {
    return brightness * sineOf(90.0 * (half - distance) / half * kRadiansPerDegree);
}
double cusp(double brightness, double distance, double half, Sine sineOf) {
    return brightness * (1.0 + sineOf((90.0 * distance / half - 180.0) * kRadiansPerDegree));
}

/// One direction of a bar: how far it reaches from the origin, and how it fades on the way.
struct BarSide {
    double half;
    BarProfile profile;
    double brightness;

    uint8_t at(double distance) const {
        const auto value = [&](Sine sineOf) { return profile(brightness, distance, half, sineOf); };
        return clampByte(
            truncateRough(value(sine), 1e-9 * std::abs(brightness), [&] { return value(exactSine); }));
    }
};

/// The two directions of a bar; its value is the product of both.
struct Bar {
    BarSide along;  ///< the way of its angle
    BarSide across;
    const ByteSquare<uint8_t>& multiply;

    int32_t valueAt(uint8_t alongValue, uint8_t acrossValue) const {
        return multiply[alongValue][acrossValue];
    }
};

/// A line is longest across its angle, a caustic along it.
Bar barOf(const FlareState& state, const FlareElement& element) {
    const double length = element.length / 2.0, thickness = element.thickness / 2.0;
    const double brightness = element.brightness;
    const ByteSquare<uint8_t>& multiply = state.tables->blendMultiply;
    if (element.kind == FlareKind::Line)
        return {{thickness, dome, brightness}, {length, dome, brightness}, multiply};
    return {{length, tent, brightness}, {thickness, cusp, brightness}, multiply};
}

enum class BarAxis { Oblique, Horizontal, Vertical, None };

/// Upright bars exist only at these angles; at any other multiple of 90 degrees nothing is painted.
BarAxis axisOf(const FlareElement& element) {
    const float angle = element.angle;
    if (!std::isfinite(angle) || std::fmod(angle, 90.0f) != 0) return BarAxis::Oblique;
    if (angle == 0 || angle == -180 || angle == -360) return BarAxis::Horizontal;
    if (angle == -90 || angle == -270) return BarAxis::Vertical;
    if (angle == 90 && element.kind == FlareKind::StarCaustic) return BarAxis::Vertical;
    return BarAxis::None;
}

/// Values of `side` over the part of an axis that it reaches, ends included.
struct SideValues {
    int32_t first = 0;
    std::vector<uint8_t> values;

    SideValues(const BarSide& side, int32_t origin, int32_t limit) {
        for (int32_t place = 0; place < limit; ++place) {
            const auto distance = static_cast<float>(std::abs(double(place) - origin));
            if (distance <= side.half)
                values.push_back(side.at(distance));
            else if (values.empty())
                ++first;
        }
    }

    int32_t last() const { return first + static_cast<int32_t>(values.size()); }
    uint8_t at(int32_t place) const { return values[static_cast<size_t>(place - first)]; }
};

void paintUpright(const FlareState& state, const FlareElement& element, const Bar& bar, bool isHorizontal) {
    const FlarePlot plot(state, element);
    const SideValues columns(isHorizontal ? bar.along : bar.across, element.origin.x, state.image.width);
    const SideValues rows(isHorizontal ? bar.across : bar.along, element.origin.y, state.image.height);
    const GridBox box{columns.first, rows.first, columns.last(), rows.last()};
    forEachBandOfRows(state, box, [&](const GridBox& part) {
        forEachPixelOf(state, part, [&](Pixel& pixel, int32_t x, int32_t y) {
            const uint8_t column = columns.at(x), row = rows.at(y);
            plot(pixel, isHorizontal ? bar.valueAt(column, row) : bar.valueAt(row, column));
        });
    });
}

/// A slanted line through the origin, and the distance of pixels from it along perpendiculars. These have
/// whole intercepts, which is what steps the edges of a slanted bar slightly.
class SlantedAxis {
public:
    SlantedAxis(Point origin, float degrees, double half, int32_t width) {
        const double angle = static_cast<float>(double{degrees} * kTurnFactor);
        const double rise = (origin.y + exactSine(angle) * half) - origin.y;
        const double run = (origin.x + exactCosine(angle) * half) - origin.x;
        slope_ = static_cast<float>(rise / run);
        intercept_ = static_cast<float>(origin.y - double{slope_} * origin.x);
        perpendicular_ = static_cast<float>(-1.0 / slope_);
        wholeRise_.reserve(static_cast<size_t>(width));
        for (int32_t x = 0; x < width; ++x) wholeRise_.push_back(truncate(x * double{perpendicular_}));
    }

    double squaredDistance(int32_t x, int32_t y) const {
        const double k = wrapSubtract(y, wholeRise_[static_cast<size_t>(x)]);
        const double footX = (k - intercept_) / (double{slope_} - perpendicular_);
        const double footY = footX * perpendicular_ + k;
        return (x - footX) * (x - footX) + (y - footY) * (y - footY);
    }

private:
    float slope_, intercept_, perpendicular_;
    std::vector<int32_t> wholeRise_;  ///< by column
};

/// Beyond this a bar has no pixels: its corners, with room for the rounding of the axes. A bar thinner than
/// the rounding may slant anywhere.
double reachOf(const Bar& bar, Point origin) {
    if (bar.along.half < 0.01 || bar.across.half < 0.01) return INFINITY;
    const double distance = std::abs(double(origin.x)) + std::abs(double(origin.y));
    return 1.01 * std::sqrt(bar.along.half * bar.along.half + bar.across.half * bar.across.half) + 4 +
           1e-6 * distance;
}

void paintSlanted(const FlareState& state, const FlareElement& element, const Bar& bar) {
    const FlarePlot plot(state, element);
    const double turned = double{element.angle} + 90.0;
    const auto upright = static_cast<float>(turned > 360 ? turned - 360 : turned);
    const SlantedAxis first(element.origin, upright, bar.along.half, state.image.width);
    const SlantedAxis second(element.origin, element.angle, bar.across.half, state.image.width);
    const double alongSquare = bar.along.half * bar.along.half;
    const double acrossSquare = bar.across.half * bar.across.half;
    const GridBox box = boxAround(state, element.origin, reachOf(bar, element.origin));
    forEachBandOfRows(state, box, [&](const GridBox& part) {
        forEachPixelOf(state, part, [&](Pixel& pixel, int32_t x, int32_t y) {
            const double along = first.squaredDistance(x, y);
            if (!(along <= alongSquare)) return;
            const double across = second.squaredDistance(x, y);
            if (!(across <= acrossSquare)) return;
            plot(pixel, bar.valueAt(bar.along.at(std::sqrt(along)), bar.across.at(std::sqrt(across))));
        });
    });
}

}  // namespace

void paintBar(const FlareState& state, const FlareElement& element) {
    if (!(element.length > 0 && element.thickness > 0)) return;
    const Bar bar = barOf(state, element);
    switch (axisOf(element)) {
        case BarAxis::Horizontal:
            return paintUpright(state, element, bar, true);
        case BarAxis::Vertical:
            return paintUpright(state, element, bar, false);
        case BarAxis::Oblique:
            return paintSlanted(state, element, bar);
        case BarAxis::None:
            return;
    }
}

}  // namespace krl
