#include "kernels/path/GaussianLine.h"

#include <cmath>

#include "core/Doubts.h"
#include "core/ExactFunctions.h"
#include "core/Numbers.h"

namespace krl {

namespace {

/// Beyond this distance from the line a cell gains nothing.
constexpr double kReach = 2.0;

class LightBrush {
public:
    LightBrush(const LightMask& mask, const GridBox& box, int32_t intensity, int32_t times)
        : mask_(mask), box_(box), intensity_(intensity), times_(times) {}

    void add(int32_t x, int32_t y, double distance) const {
        if (!box_.holds(x, y) || !(std::abs(distance) <= kReach)) return;
        uint8_t& cell = mask_.at(x, y);
        if (cell == (intensity_ > 0 ? 255 : 0)) return;  // full already, or nothing to lose
        const double inner = -distance * distance, peak = 2.0 * intensity_;
        const int64_t gain = truncateRough(roughExponential(inner) * peak, 1e-9 * std::abs(peak),
                                           [&] { return 2.0 * exactExponential(inner) * intensity_; });
        cell = static_cast<uint8_t>(clampTo<int64_t>(cell + gain * times_, 0, 255));
    }

private:
    LightMask mask_;
    GridBox box_;
    int32_t intensity_, times_;
};

/// `box` and its neighbours: a line just outside still lights cells within.
GridBox widened(const GridBox& box) { return {box.left - 1, box.top - 1, box.right + 1, box.bottom + 1}; }

}  // namespace

void gaussianLine(const LightMask& mask, const GridBox& box, Point from, Point to, int32_t intensity,
                  int32_t times) {
    const LightBrush brush(mask, box, intensity, times);
    const DigitalLine line(from, to, HalfwayMove::Diagonal);
    const auto major = static_cast<double>(line.majorSpan()), minor = static_cast<double>(line.minorSpan());
    if (major == 0) return brush.add(from.x, from.y, 0.0);
    const double inverse = 1.0 / (2.0 * std::sqrt(major * major + minor * minor));
    const double beside = 2.0 * major * inverse;
    const int32_t acrossX = line.steep() ? line.side() : 0, acrossY = line.steep() ? 0 : line.side();
    line.walk(widened(box), [&](int32_t x, int32_t y, int64_t excess) {
        const double distance = static_cast<double>(excess) * inverse;
        brush.add(x, y, distance);
        brush.add(x + acrossX, y + acrossY, beside - distance);
        brush.add(x - acrossX, y - acrossY, beside + distance);
    });
}

}  // namespace krl
