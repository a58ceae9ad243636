#include "effects/generate/ScanConversion.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "core/Numbers.h"

namespace krl {

namespace {

/// An edge that the current row crosses; edge `number` runs from its corner to the next.
struct ActiveEdge {
    size_t number;
    double x;      ///< where it crosses the middle of the row
    double slope;  ///< change of `x` to the next row
};

class PolygonScan {
public:
    PolygonScan(std::span<const PolygonCorner> corners, const GridBox& clip)
        : corners_(corners), clip_(clip), order_(corners.size()) {
        std::iota(order_.begin(), order_.end(), size_t{0});
        std::ranges::stable_sort(order_, {}, [&](size_t i) { return std::trunc(corners_[i].y); });
    }

    template <class Span>
    void run(Span&& span) {
        const auto [lowest, highest] = std::ranges::minmax(corners_, {}, &PolygonCorner::y);
        const int32_t first = within(std::ceil(lowest.y - 0.5), clip_.top, clip_.bottom);
        const int32_t last = within(std::floor(highest.y - 0.5), clip_.top - 1, clip_.bottom - 1);
        for (int32_t y = first; y <= last; ++y) {
            passCorners(y);
            std::ranges::stable_sort(active_, {}, &ActiveEdge::x);
            for (size_t pair = 0; pair + 1 < active_.size(); pair += 2)
                emit(y, active_[pair].x, active_[pair + 1].x, span);
            for (ActiveEdge& edge : active_) edge.x += edge.slope;
        }
    }

private:
    static int32_t within(double value, int32_t low, int32_t high) {
        return truncate(clampTo(value, double(low), double(high)));
    }

    /// Takes edges in and out at the corners that the middle of row `y` has come to.
    void passCorners(int32_t y) {
        for (; next_ < order_.size() && corners_[order_[next_]].y <= y + 0.5; ++next_) {
            const size_t corner = order_[next_];
            const size_t before = (corner + corners_.size() - 1) % corners_.size();
            turn(before, corners_[before].y, y);
            turn(corner, corners_[(corner + 1) % corners_.size()].y, y);
        }
    }

    /// Edge `number`, at a corner just passed, leads to a corner at height `farEnd`.
    void turn(size_t number, double farEnd, int32_t y) {
        if (farEnd <= y - 0.5)
            std::erase_if(active_, [number](const ActiveEdge& edge) { return edge.number == number; });
        else if (farEnd > y + 0.5)
            insert(number, y);
    }

    void insert(size_t number, int32_t y) {
        PolygonCorner top = corners_[number], bottom = corners_[(number + 1) % corners_.size()];
        if (bottom.y < top.y) std::swap(top, bottom);
        const double slope = (bottom.x - top.x) / (bottom.y - top.y);
        active_.push_back({number, top.x + (y + 0.5 - top.y) * slope, slope});
    }

    template <class Span>
    void emit(int32_t y, double leftX, double rightX, Span&& span) const {
        const int32_t left = within(std::ceil(leftX - 0.5), clip_.left, clip_.right);
        const int32_t right = within(std::floor(rightX - 0.5), clip_.left - 1, clip_.right - 1);
        if (left < right) span(y, left, right);
    }

    std::span<const PolygonCorner> corners_;
    GridBox clip_;
    std::vector<size_t> order_;  ///< corners from the top down
    size_t next_ = 0;
    std::vector<ActiveEdge> active_;
};

}  // namespace

void scanPolygon(std::span<const PolygonCorner> corners, const GridBox& clip,
                 const std::function<void(int32_t, int32_t, int32_t)>& span) {
    if (corners.empty() || clip.isEmpty()) return;
    PolygonScan(corners, clip).run(span);
}

}  // namespace krl
