#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "krlimage/pixel.h"

namespace krl {

/// A half-open rectangle of grid cells.
struct GridBox {
    int32_t left = 0, top = 0, right = 0, bottom = 0;

    bool holds(int32_t x, int32_t y) const { return x >= left && x < right && y >= top && y < bottom; }
    bool isEmpty() const { return right <= left || bottom <= top; }
};

/// Where a line goes that passes halfway between two cells.
enum class HalfwayMove { Diagonal, Straight };

/// The cells of a straight line between two grid points: the walk of Bresenham, from the end with the
/// smaller coordinate along the longer span. The part within a box is found by arithmetic, so that the
/// length outside it costs nothing.
class DigitalLine {
public:
    /// Lines that reach beyond this to any side have no cells; within it no product overflows.
    static constexpr int32_t kFarthest = 1 << 29;

    DigitalLine(Point from, Point to, HalfwayMove halfway) {
        const int64_t dx = int64_t(to.x) - from.x, dy = int64_t(to.y) - from.y;
        steep_ = std::abs(dy) > std::abs(dx);
        if (steep_ ? dy < 0 : dx < 0) std::swap(from, to);
        start_ = steep_ ? from.y : from.x;
        across_ = steep_ ? from.x : from.y;
        const int64_t acrossEnd = steep_ ? to.x : to.y;
        major_ = std::abs(steep_ ? dy : dx);
        minor_ = std::abs(steep_ ? dx : dy);
        side_ = acrossEnd < across_ ? -1 : 1;
        halfway_ = halfway == HalfwayMove::Diagonal ? 0 : 1;
        const auto near = [](Point p) {
            return p.x >= -kFarthest && p.x <= kFarthest && p.y >= -kFarthest && p.y <= kFarthest;
        };
        within_ = near(from) && near(to);
    }

    bool steep() const { return steep_; }
    int64_t majorSpan() const { return major_; }
    int64_t minorSpan() const { return minor_; }
    /// The way that a diagonal move takes along the shorter span: 1 or -1.
    int32_t side() const { return side_; }

    /// Calls `visit(x, y, excess)` for the cells within `box`, in walking order. `excess` is twice the
    /// longer span times how far the true line lies beyond the cell toward `side`.
    template <class Visit>
    void walk(const GridBox& box, Visit&& visit) const {
        if (!within_ || box.isEmpty()) return;
        auto [step, last] = stepsWithin(box);
        if (step > last) return;
        int64_t moved = movedAt(step);
        int64_t excess = 2 * (minor_ * step - major_ * moved);
        for (;; ++step) {
            const auto along = static_cast<int32_t>(start_ + step);
            const auto beside = static_cast<int32_t>(across_ + side_ * moved);
            steep_ ? visit(beside, along, excess) : visit(along, beside, excess);
            if (step == last) return;
            excess += 2 * minor_;
            if (excess - major_ >= halfway_) {
                excess -= 2 * major_;
                ++moved;
            }
        }
    }

private:
    /// Diagonal moves made before step `step`.
    int64_t movedAt(int64_t step) const {
        return major_ == 0 ? 0 : (2 * minor_ * step + major_ - halfway_) / (2 * major_);
    }

    /// First step at which `moved` diagonal moves have been made.
    int64_t stepOfMove(int64_t moved) const {
        return moved <= 0 ? 0 : (2 * major_ * moved - major_ + halfway_ + 2 * minor_ - 1) / (2 * minor_);
    }

    /// First and last step whose cells lie in `box`.
    std::pair<int64_t, int64_t> stepsWithin(const GridBox& box) const {
        const int64_t low = steep_ ? box.left : box.top, high = (steep_ ? box.right : box.bottom) - 1;
        const int64_t fewest = side_ > 0 ? low - across_ : across_ - high;
        const int64_t most = side_ > 0 ? high - across_ : across_ - low;
        if (fewest > minor_ || most < 0) return {0, -1};
        const int64_t first = std::max<int64_t>((steep_ ? box.top : box.left) - start_, stepOfMove(fewest));
        int64_t last = std::min<int64_t>((steep_ ? box.bottom : box.right) - 1 - start_, major_);
        if (most < minor_) last = std::min(last, stepOfMove(most + 1) - 1);
        return {first, last};
    }

    bool steep_ = false, within_ = false;
    int64_t start_ = 0, across_ = 0;
    int64_t major_ = 0, minor_ = 0;
    int32_t side_ = 1;
    int32_t halfway_ = 0;  ///< what twice the excess past halfway must reach to move
};

}  // namespace krl
