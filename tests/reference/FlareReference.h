#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "effects/generate/BezierOutline.h"
#include "krlimage/generate.h"

/// The flare's and the rasteriser's shapes drawn the slow way: cell by cell, as they are told.
namespace krl::reference {

/// Bresenham's walk with a running decision value, every cell visited: `visit(x, y, v)`, v the distance term
/// of the step.
inline void walkLine(Point from, Point to, bool straightAtZero,
                     const std::function<void(int32_t, int32_t, int64_t)>& visit) {
    int64_t dx = to.x - from.x, dy = to.y - from.y;
    const bool steep = std::abs(dy) > std::abs(dx);
    if ((steep ? dy : dx) < 0) {
        std::swap(from, to);
        dx = -dx;
        dy = -dy;
    }
    const int64_t major = std::abs(steep ? dy : dx), minor = std::abs(steep ? dx : dy);
    const int32_t side = (steep ? dx : dy) < 0 ? -1 : 1;
    int64_t d = 2 * minor - major;
    int32_t x = from.x, y = from.y;
    visit(x, y, 0);
    for (int64_t i = 0; i < major; ++i) {
        const bool straight = straightAtZero ? d <= 0 : d < 0;
        const int64_t v = straight ? d + major : d - major;
        d += straight ? 2 * minor : 2 * (minor - major);
        (steep ? y : x) += 1;
        if (!straight) (steep ? x : y) += side;
        visit(x, y, v);
    }
}

/// A midpoint circle, one step after another.
struct CircleSteps {
    int64_t x = 0, y, d, east = 3, southEast;

    explicit CircleSteps(int64_t radius) : y(radius), d(1 - radius), southEast(5 - 2 * radius) {}
    void step() {
        if (d < 0) {
            d += east;
            east += 2;
            southEast += 2;
        } else {
            d += southEast;
            east += 2;
            southEast += 4;
            --y;
        }
        ++x;
    }
};

/// Calls `paint(x, y)` for the cells, relative to the centre, of the ring between two circles: one column of
/// one octant after another, mirrored.
inline void walkRing(int32_t inner, int32_t outer, const std::function<void(int32_t, int32_t)>& paint) {
    CircleSteps in(inner), out(outer);
    for (; out.x <= out.y; in.step(), out.step()) {
        const auto x = int32_t(out.x);
        if (x == 0 && in.y == 0) paint(0, 0);
        for (auto y = int32_t(out.y); y >= x; --y) {
            if (y <= in.y || (x == 0 && y == 0)) continue;
            if (x == 0) {
                for (auto [a, b] : {std::pair{0, y}, {0, -y}, {y, 0}, {-y, 0}}) paint(a, b);
            } else {
                for (int32_t sx : {-1, 1})
                    for (int32_t sy : {-1, 1}) {
                        paint(sx * x, sy * y);
                        if (x != y) paint(sx * y, sy * x);
                    }
            }
        }
    }
}

/// Adds a Gupta-Sproull line to a mask of `width` by `height` bytes.
inline void gaussianLine(std::vector<uint8_t>& mask, int32_t width, int32_t height, Point from, Point to,
                         int32_t intensity) {
    const auto add = [&](int32_t x, int32_t y, double q) {
        if (x < 0 || y < 0 || x >= width || y >= height || std::abs(q) > 2.0) return;
        uint8_t& cell = mask[size_t(y) * size_t(width) + size_t(x)];
        cell = clampByte(cell + truncate(2.0 * std::exp(-q * q) * intensity));
    };
    const double dx = std::abs(to.x - from.x), dy = std::abs(to.y - from.y);
    const bool steep = dy > dx;
    if (dx == 0 && dy == 0) return add(from.x, from.y, 0);
    const double inverse = 1.0 / (2.0 * std::sqrt(dx * dx + dy * dy));
    const double beside = 2.0 * std::max(dx, dy) * inverse;
    const bool falls = (to.x - from.x < 0) != (to.y - from.y < 0) && dx > 0 && dy > 0;
    const int32_t side = falls ? -1 : 1;
    walkLine(from, to, false, [&](int32_t x, int32_t y, int64_t v) {
        const double q = double(v) * inverse;
        add(x, y, q);
        add(steep ? x + side : x, steep ? y : y + side, beside - q);
        add(steep ? x - side : x, steep ? y : y - side, beside + q);
    });
}

/// The fractions of a hoop's rays over a whole picture, with a word for every fine cell.
class HoopCells {
public:
    HoopCells(int32_t width, int32_t height)
        : width_(width),
          height_(height),
          fractions(size_t(width) * size_t(height), -1.0f),
          visited_(size_t(width) * 5 * size_t(height) * 5, 0) {}

    void draw(Point inner, Point outer) {
        const Point from{inner.y * 5, inner.x * 5}, to{outer.y * 5, outer.x * 5};
        const double length = std::hypot(double(from.x - to.x), double(from.y - to.y));
        walkLine(from, to, true, [&](int32_t x, int32_t y, int64_t) {
            const double distance = std::sqrt(double(x - to.x) * (x - to.x) + double(y - to.y) * (y - to.y));
            stamp(x, y, float(length > 0 ? distance / length : 0.0));
        });
    }

private:
    void stamp(int32_t x, int32_t y, float t) {
        const auto limited = [](double v, int32_t limit) { return truncate(clampTo(v, 0.0, double(limit))); };
        const int32_t right = limited(std::ceil(x + 3.75), width_ * 5),
                      bottom = limited(std::ceil(y + 3.75), height_ * 5);
        for (int32_t cellY = limited(std::floor(y - 3.75), height_ * 5); cellY < bottom; ++cellY)
            for (int32_t cellX = limited(std::floor(x - 3.75), width_ * 5); cellX < right; ++cellX) {
                int32_t& cell = visited_[size_t(cellY) * size_t(width_ * 5) + size_t(cellX)];
                if (cell) continue;
                cell = 1;
                fractions[size_t(truncate(cellY * 0.2)) * size_t(width_) + size_t(truncate(cellX * 0.2))] = t;
            }
    }

    int32_t width_, height_;

public:
    std::vector<float> fractions;

private:
    std::vector<int32_t> visited_;
};

/// The Bezier matte with the whole mask in memory, a test for every cell and every pixel against every edge.
inline void drawBezierShape(const ImageBuffer& image, std::span<const BezierSegment> segments) {
    const std::vector<Point> points = flattenOutline(segments, image.height, 4);
    const int32_t maskWidth = image.width * 4, maskHeight = image.height * 4;
    std::vector<uint8_t> mask(size_t(maskWidth) * size_t(maskHeight), 0);
    const auto stamp = [&](int32_t column, int32_t row, int64_t) {
        for (int32_t y = std::max(row - 6, 0); y < std::min(row + 6, maskHeight - 1); ++y)
            for (int32_t x = std::max(column - 6, 0); x < std::min(column + 6, maskWidth - 1); ++x)
                if ((x - column) * (x - column) + (y - row) * (y - row) <= 36)
                    mask[size_t(y) * size_t(maskWidth) + size_t(x)] = 1;
    };
    int32_t maxX = 0, maxY = 0, minX = 100000000, minY = 100000000;
    std::vector<Point> flat;
    for (size_t i = 0; i < points.size(); ++i) {
        if (i > 0) walkLine(points[i - 1], points[i], false, stamp);
        maxX = std::max(maxX, points[i].x);
        maxY = std::max(maxY, points[i].y);
        minX = std::min(minX, points[i].x);
        minY = std::min(minY, points[i].y);
        flat.push_back({truncate(points[i].y * 0.25), truncate(points[i].x * 0.25)});
    }
    const auto inside = [&](int32_t column, int32_t row) {
        bool odd = false;
        for (size_t i = 1; i < flat.size(); ++i) {
            const Point a = flat[i - 1], b = flat[i];
            if ((row < a.y) == (row < b.y)) continue;
            const auto crossing = float(double(row - a.y) / (b.y - a.y) * (b.x - a.x) + a.x);
            if (float(column) < crossing) odd = !odd;
        }
        return odd;
    };
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x) {
            int32_t count = 0;
            for (int32_t cell = 0; cell < 16; ++cell)
                count += mask[size_t(y * 4 + cell / 4) * size_t(maskWidth) + size_t(x * 4 + cell % 4)];
            Pixel& p = image.row(y)[x];
            p.blue = p.green = p.red = truncatedByte(15.9375 * count);
            if (x >= truncate(minX * 0.25) && x < truncate(maxX * 0.25) && y >= truncate(minY * 0.25) &&
                y < truncate(maxY * 0.25) && inside(x, y))
                p.blue = 255;
        }
}

}  // namespace krl::reference
