#include "effects/generate/BezierOutline.h"

#include <cmath>

#include "core/Numbers.h"

namespace krl {

namespace {

/// The place of a script's (0, 0), in pixels from the bottom left corner.
constexpr int32_t kMargin = 200;

/// Ratio of length to bend, squared, from which a piece counts as straight.
constexpr double kFlatness = 20.0;

/// More halvings in a row, and more pieces of a curve, than any curve that fits a picture needs. Far outside
/// the picture single precision is so coarse that a piece may never become flat.
constexpr int32_t kMostHalvings = 48;
constexpr size_t kMostPieces = 1 << 14;

Point plus(Point a, Point b) { return {wrapAdd(a.y, b.y), wrapAdd(a.x, b.x)}; }

struct CurvePoint {
    float x = 0, y = 0;

    bool operator==(const CurvePoint&) const = default;
};

CurvePoint halfway(CurvePoint a, CurvePoint b) {
    return {static_cast<float>((double{a.x} + b.x) * 0.5), static_cast<float>((double{a.y} + b.y) * 0.5)};
}

struct Cubic {
    CurvePoint p0, p1, p2, p3;

    bool isFlat() const {
        const double dx = double{p3.x} - p0.x, dy = double{p3.y} - p0.y;
        const auto bend = [&](CurvePoint p) {
            return std::abs(dy * (double{p.x} - p3.x) - dx * (double{p.y} - p3.y));
        };
        const double bends = bend(p1) + bend(p2);
        return kFlatness * (dx * dx + dy * dy) > bends * bends;
    }

    bool isOnePoint() const { return p0 == p1 && p0 == p2 && p0 == p3; }
};

/// Appends the middle of every piece that is flat; `points` does not grow beyond `most`, but for one piece
/// of each halving under way.
void appendPieces(const Cubic& curve, int32_t halvings, size_t most, std::vector<Point>& points) {
    const CurvePoint p01 = halfway(curve.p0, curve.p1), p12 = halfway(curve.p1, curve.p2);
    const CurvePoint p23 = halfway(curve.p2, curve.p3);
    const CurvePoint p012 = halfway(p01, p12), p123 = halfway(p12, p23);
    const CurvePoint middle = halfway(p012, p123);
    // A piece that has shrunk to a point is never flat.
    if (curve.isFlat() || curve.isOnePoint() || halvings == 0 || points.size() >= most) {
        points.push_back({truncate(middle.y), truncate(middle.x)});
        return;
    }
    appendPieces({curve.p0, p01, p012, middle}, halvings - 1, most, points);
    appendPieces({middle, p123, p23, curve.p3}, halvings - 1, most, points);
}

}  // namespace

std::vector<Point> flattenOutline(std::span<const BezierSegment> segments, int32_t imageHeight,
                                  int32_t scale) {
    const auto placed = [&](Point p) {
        const int32_t row = wrapSubtract(imageHeight, wrapAdd(p.y, kMargin));
        return Point{wrapMultiply(row, scale), wrapMultiply(wrapAdd(p.x, kMargin), scale)};
    };
    const auto onCurve = [](Point p) { return CurvePoint{static_cast<float>(p.x), static_cast<float>(p.y)}; };
    std::vector<Point> points;
    for (const BezierSegment& segment : segments) {
        const Point handle1 = plus(segment.handle1, segment.vertex);
        const Point handle2 = plus(segment.handle2, handle1);
        const Point start = placed(segment.vertex), end = placed(segment.end);
        points.push_back(start);
        appendPieces({onCurve(start), onCurve(placed(handle1)), onCurve(placed(handle2)), onCurve(end)},
                     kMostHalvings, points.size() + kMostPieces, points);
        points.push_back(end);
    }
    return points;
}

}  // namespace krl
