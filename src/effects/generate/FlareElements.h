#pragma once

#include <algorithm>
#include <cmath>

#include "core/Bands.h"
#include "core/ExactFunctions.h"
#include "effects/generate/FlareCanvas.h"
#include "kernels/path/DigitalLine.h"

/// The painters behind `FlareCanvas::draw`, one for each family of elements. Each needs a picture.
namespace krl {

/// `FilledCircle`, `GradientCircle` and `OutlinedCircle`: rings between midpoint circles.
void paintRings(const FlareState& state, const FlareElement& circle);
/// `FadedCircle`.
void paintFadedCircle(const FlareState& state, const FlareElement& circle);
/// `Line` and `StarCaustic`.
void paintBar(const FlareState& state, const FlareElement& bar);
/// `Polyshape`.
void paintPolygon(const FlareState& state, const FlareElement& polygon);
/// `RandomFan`, `Spike` and `Star`.
void paintRays(const FlareState& state, const FlareElement& rays);
/// `ChromaHoop`.
void paintHoop(const FlareState& state, const FlareElement& hoop);

/// A place on a circle as the flare counts angles: 0 degrees points down, 90 to the right.
struct FlarePlace {
    double x, y;
};
inline FlarePlace placeOnCircle(Point centre, double degrees, double radius) {
    const double angle = degrees / 180.0 * 3.14159265358979323846;
    return {exactSine(angle) * radius + centre.x, exactCosine(angle) * radius + centre.y};
}

/// Whole numbers from `low` to `high`, cut to 0..`limit` and truncated, the high end exclusive; none
/// where an end is no number.
inline IndexRange cutRange(double low, double high, int32_t limit) {
    if (std::isnan(low) || std::isnan(high)) return {};
    const auto cut = [limit](double value) { return truncate(clampTo(value, 0.0, double(limit))); };
    return {cut(low), cut(high)};
}

/// The part of the picture within `reach` of `centre` to every side, high edges exclusive.
inline GridBox boxAround(const FlareState& state, Point centre, double reach) {
    const IndexRange columns = cutRange(centre.x - reach, centre.x + reach, state.image.width);
    const IndexRange rows = cutRange(centre.y - reach, centre.y + reach, state.image.height);
    return {columns.first, rows.first, columns.last, rows.last};
}

/// Calls `work(part)` for the boxes that the bands cut `box` into by rows. If a required task or thread
/// cannot be created, the element stays unfinished: elements have no failures.
template <class Work>
void forEachBandOfRows(const FlareState& state, const GridBox& box, Work&& work) {
    if (box.isEmpty()) return;
    const int32_t bands = state.engine->getThreadCount();
    leftOutWithoutThreads(runBands(*state.engine, bands, [&](int32_t band) {
        const IndexRange rows = lineBand(box.bottom - box.top, bands, band);
        const GridBox part{box.left, box.top + rows.first, box.right, box.top + rows.last};
        if (!part.isEmpty()) work(part);
    }));
}

/// Calls `perPixel(Pixel&, x, y)` for every pixel of `box`, in rows.
template <class PerPixel>
void forEachPixelOf(const FlareState& state, const GridBox& box, PerPixel&& perPixel) {
    for (int32_t y = box.top; y < box.bottom; ++y) {
        state.engine->throwIfCancelled();
        Pixel* row = state.image.row(y);
        for (int32_t x = box.left; x < box.right; ++x) perPixel(row[x], x, y);
    }
}

/// Distance between two places, as single precision keeps it.
inline float distanceBetween(double x0, double y0, double x1, double y1) {
    const double dx = x0 - x1, dy = y0 - y1;
    return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

}  // namespace krl
