#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "core/Numbers.h"
#include "effects/generate/FlareElements.h"

namespace krl {

namespace {

/// One octant of a midpoint circle, from the column straight below its centre to the diagonal: column by
/// column the row that it runs through. Starts at any column, so that a circle far larger than the picture
/// costs no more than what the picture shows of it.
class CircleStepper {
public:
    /// What `y` is where the octant has no row.
    static constexpr int64_t kNone = -1;

    CircleStepper(int32_t radius, int64_t x) : radius_(radius), x_(x), y_(kNone) {
        if (radius < 0 || x > radius) return;
        y_ = x == 0 ? radius : rowAt(x);
        leaveOctant();
    }

    int64_t y() const { return y_; }

    void step() {
        ++x_;
        if (y_ == kNone) return;
        if (!isWithin(x_, y_)) --y_;
        leaveOctant();
    }

private:
    /// Whether the midpoint above row `y` of column `x` lies inside the circle.
    bool isWithin(int64_t x, int64_t y) const { return x * x + y * (y - 1) < radius_ * radius_; }

    /// Last row of column `x` whose midpoint lies inside, none where that is above the diagonal.
    int64_t rowAt(int64_t x) const {
        auto y = static_cast<int64_t>(std::sqrt(static_cast<double>(radius_ * radius_ - x * x)));
        while (isWithin(x, y + 1)) ++y;
        while (y >= x && !isWithin(x, y)) --y;
        return y;
    }

    void leaveOctant() {
        if (y_ < x_) y_ = kNone;
    }

    const int64_t radius_;
    int64_t x_, y_;
};

/// Smallest and largest distance along one axis from `centre` to the cells of a range.
struct Reach {
    int64_t nearest, farthest;

    Reach(int32_t first, int32_t last, int32_t centre) {
        const int64_t before = int64_t(centre) - first, after = int64_t(last) - 1 - centre;
        nearest = std::max<int64_t>({0, -before, -after});
        farthest = std::max(std::abs(before), std::abs(after));
    }
};

/// The rows of one circle, for the columns of the octant that a box shows.
class CircleRows {
public:
    CircleRows(int32_t radius, int64_t first, int64_t last) : first_(first) {
        rows_.reserve(static_cast<size_t>(last - first + 1));
        CircleStepper stepper(radius, first);
        for (int64_t x = first; x <= last; ++x, stepper.step()) rows_.push_back(stepper.y());
    }

    int64_t at(int64_t x) const { return rows_[static_cast<size_t>(x - first_)]; }

private:
    int64_t first_;
    std::vector<int64_t> rows_;
};

enum class RingForm { Solid, Falling, Rising };

/// What lies between two circles, the inner one excluded and the outer one included.
struct Ring {
    int32_t innerRadius, outerRadius;
    RingForm form;
    double edge = 0;  ///< the radius where a falling ring reaches 0 and a rising one full brightness
    double slope = 0;
};

/// Paints rings around one centre, each covered pixel once. The shorter of a pixel's two distances along the
/// axes is the column of its octant, the longer one its row.
class RingPainter {
public:
    RingPainter(const FlareState& state, const FlareElement& circle, std::span<const Ring> rings)
        : state_(state),
          plot_(state, circle),
          origin_(circle.origin),
          brightness_(circle.brightness),
          rings_(rings),
          box_(boxAround(state, circle.origin, outermost(rings))) {}

    void paint() {
        if (box_.isEmpty()) return;
        const Reach columns(box_.left, box_.right, origin_.x), rows(box_.top, box_.bottom, origin_.y);
        for (const Ring& ring : rings_)
            for (int32_t radius : {ring.innerRadius, ring.outerRadius})
                circles_.emplace_back(radius, std::min(columns.nearest, rows.nearest),
                                      std::min(columns.farthest, rows.farthest));
        forEachPixelOf(state_, box_, [&](Pixel& pixel, int32_t x, int32_t y) {
            const int64_t across = std::abs(int64_t(x) - origin_.x), down = std::abs(int64_t(y) - origin_.y);
            paintPixel(pixel, std::min(across, down), std::max(across, down));
        });
    }

private:
    static double outermost(std::span<const Ring> rings) {
        int32_t radius = 0;
        for (const Ring& ring : rings) radius = std::max(radius, ring.outerRadius);
        return radius;
    }

    void paintPixel(Pixel& pixel, int64_t column, int64_t row) {
        for (size_t i = 0; i < rings_.size(); ++i) {
            const int64_t inner = circles_[2 * i].at(column), outer = circles_[2 * i + 1].at(column);
            // The centre belongs to the first ring that starts there, though no row of it lies beyond 0.
            const bool isCentre = row == 0 && inner == 0 && outer >= 0;
            if (!isCentre && (row <= inner || row > outer)) continue;
            plot_(pixel, valueAt(rings_[i], column, row));
            if (isCentre) return;
        }
    }

    int32_t valueAt(const Ring& ring, int64_t column, int64_t row) const {
        if (ring.form == RingForm::Solid) return truncate(brightness_);
        const float d = distanceBetween(double(column), double(row), 0, 0);
        const double ramp = clampTo((ring.edge - d) * ring.slope, 0.0, 255.0);
        return ring.form == RingForm::Falling ? truncatedByte(ramp) : truncate(brightness_ - ramp);
    }

    const FlareState& state_;
    const FlarePlot plot_;
    const Point origin_;
    const double brightness_;
    const std::span<const Ring> rings_;
    const GridBox box_;
    std::vector<CircleRows> circles_;  ///< inner and outer of each ring
};

void paint(const FlareState& state, const FlareElement& circle, std::span<const Ring> rings) {
    RingPainter(state, circle, rings).paint();
}

/// Starts at the centre.
constexpr int32_t kFromCentre = 0;

void paintFilled(const FlareState& state, const FlareElement& circle) {
    const int32_t solid = truncate(circle.radius);
    const int32_t soft = truncate(double{circle.radius} + circle.outerFeather);
    const std::array<Ring, 2> rings{{
        {kFromCentre, solid, RingForm::Solid},
        {solid, soft, RingForm::Falling, double(soft), double{circle.brightness} / circle.outerFeather},
    }};
    paint(state, circle, std::span(rings).first(circle.outerFeather > 0 ? 2 : 1));
}

void paintGradient(const FlareState& state, const FlareElement& circle) {
    const int32_t radius = truncate(circle.radius);
    const double slope = double{circle.brightness} / circle.radius;
    if (radius == 0) {  // of a cone this narrow only the tip is seen; one of no width has no slope
        const Point tip = circle.origin;
        const int32_t value = circle.radius == 0 ? 255 : truncatedByte(circle.radius * slope);
        if (GridBox{0, 0, state.image.width, state.image.height}.holds(tip.x, tip.y))
            FlarePlot(state, circle)(state.pixel(tip.x, tip.y), value);
        return;
    }
    const std::array<Ring, 1> cone{{{kFromCentre, radius, RingForm::Falling, circle.radius, slope}}};
    paint(state, circle, cone);
}

void paintOutlined(const FlareState& state, const FlareElement& circle) {
    const double radius = circle.radius, brightness = circle.brightness;
    const double outside = radius + circle.outerThickness, inside = radius - circle.innerThickness;
    const int32_t outerEdge = truncate(outside + circle.outerFeather), flatOuter = truncate(outside);
    const int32_t middle = truncate(radius), flatInner = truncate(inside);
    const int32_t innerEdge = truncate(inside - circle.innerFeather);
    const double outerSlope = circle.outerFeather > 0 ? brightness / circle.outerFeather : 0.0;
    const double innerSlope = circle.innerFeather > 0 ? brightness / circle.innerFeather : 0.0;
    const std::array<Ring, 4> rings{{
        {flatOuter, outerEdge, RingForm::Falling, double(outerEdge), outerSlope},
        {middle, flatOuter, RingForm::Solid},
        {flatInner, middle, RingForm::Solid},
        {innerEdge, flatInner, RingForm::Rising, double(flatInner), innerSlope},
    }};
    paint(state, circle, rings);
}

}  // namespace

void paintRings(const FlareState& state, const FlareElement& circle) {
    switch (circle.kind) {
        case FlareKind::FilledCircle:
            return paintFilled(state, circle);
        case FlareKind::GradientCircle:
            return paintGradient(state, circle);
        default:
            return paintOutlined(state, circle);
    }
}

}  // namespace krl
