#include <cmath>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "effects/generate/FlareElements.h"
#include "effects/generate/HoopField.h"

namespace krl {

namespace {

constexpr double kPi = 3.14159265358979323846;

/// A hoop of more rays is no hoop.
constexpr int32_t kMostRays = 1 << 24;

/// A circle that rays end on.
struct HoopCircle {
    Point centre;
    float radius;

    /// The place at `angle`, in radians, to the nearest pixel.
    Point at(double angle) const {
        const auto nearest = [](double value) { return truncate(value < 0 ? value - 0.5 : value + 0.5); };
        return {nearest(exactCosine(angle) * radius + centre.y),
                nearest(exactSine(angle) * radius + centre.x)};
    }
};

/// `part` of the way from one place to another.
Point between(Point from, Point to, double part) {
    const auto along = [part](int32_t a, int32_t b) { return truncate(a + (double(b) - a) * part); };
    return {along(from.y, to.y), along(from.x, to.x)};
}

/// The hoop slides on the line from the handle to the origin; its inner circle stays behind.
struct HoopGeometry {
    HoopCircle inner, outer;

    explicit HoopGeometry(const FlareElement& hoop) {
        const Point handle = hoop.handle;
        const auto circleAt = [handle](Point centre) {
            return HoopCircle{centre, distanceBetween(centre.x, centre.y, handle.x, handle.y)};
        };
        outer = circleAt(between(handle, hoop.origin, hoop.position));
        inner = circleAt(between(handle, outer.centre, hoop.softness));
    }
};

/// How the rays follow one another around the hoop.
struct RaySpacing {
    float step;
    int32_t count;  ///< rays but one; negative for a spacing that makes no hoop

    explicit RaySpacing(const FlareElement& hoop)
        : step(static_cast<float>(double{hoop.density} * hoop.arcCompleteness)), count(-1) {
        if (step != 0) count = truncate(2.0 * kPi * hoop.arcCompleteness / step);
        if (count > kMostRays) count = -1;
    }
};

bool isSame(Point a, Point b) { return a.x == b.x && a.y == b.y; }

void drawRays(HoopField& field, const HoopGeometry& geometry, const RaySpacing& spacing,
              const FlareElement& hoop) {
    Random random(hoop.seed);
    const double last = kPi * hoop.arcCompleteness;
    const int32_t jitterSteps = hoop.noise > 0 ? truncate(1000.0 * hoop.noise) : 0;
    Point lastInner, lastOuter;  // a ray drawn again changes nothing
    auto angle = static_cast<float>(-last);
    for (int32_t i = 0; i <= spacing.count && angle <= last && !field.isExhausted(); ++i) {
        double turned = angle;
        if (jitterSteps > 0)
            turned += (random.next() % jitterSteps / 1000.0 - hoop.noise / 2.0) * spacing.step;
        const Point inner = geometry.inner.at(turned), outer = geometry.outer.at(turned);
        if (i == 0 || !isSame(inner, lastInner) || !isSame(outer, lastOuter)) field.draw(inner, outer);
        lastInner = inner;
        lastOuter = outer;
        angle = static_cast<float>(double{angle} + spacing.step);
    }
}

/// The flare's compositor with one opacity for all pixels, in exact products.
class HoopPlot {
public:
    HoopPlot(const FlareState& state, const FlareElement& hoop)
        : state_(state),
          tables_(*state.tables),
          blend_(hoop.blend),
          alpha_(clampByte(wrapSubtract(255, hoop.transparency))) {}

    bool isVisible() const { return alpha_ > 0; }

    void operator()(Pixel& pixel, float fraction) const {
        const Pixel front = blendedOver(pixel, colourAt(fraction), blend_, tables_);
        const int32_t alpha = tables_.overBlend[alpha_][pixel.alpha];
        const double share = 1.0 / alpha;
        const auto mix = [&](uint8_t behind, uint8_t colour) {
            const double kept = double{tables_.productsUnit[pixel.alpha][behind]} * (255 - alpha_);
            return truncatedByte((kept + tables_.products[alpha_][colour]) * share);
        };
        pixel = {mix(pixel.blue, front.blue), mix(pixel.green, front.green), mix(pixel.red, front.red),
                 static_cast<uint8_t>(alpha)};
    }

private:
    Pixel colourAt(float fraction) const {
        if (state_.colourKeys.size() > 1 && fraction == HoopField::kUntouched) return {0, 0, 0, 255};
        const double level = clampTo(double{fraction} * 255.0, 0.0, 255.0);
        return state_.rampColour(
            [&](size_t channel) { return truncate(level * state_.sampleStep[channel]); });
    }

    const FlareState& state_;
    const LookupTables& tables_;
    BlendMode blend_;
    uint8_t alpha_;
};

}  // namespace

void paintHoop(const FlareState& state, const FlareElement& hoop) {
    const RaySpacing spacing(hoop);
    const HoopPlot plot(state, hoop);
    if (spacing.count < 0 || !plot.isVisible()) return;
    const HoopGeometry geometry(hoop);
    const GridBox box = boxAround(state, geometry.outer.centre, truncate(geometry.outer.radius));
    if (box.isEmpty()) return;
    HoopField field(box);
    drawRays(field, geometry, spacing, hoop);
    forEachPixelOf(state, box,
                   [&](Pixel& pixel, int32_t x, int32_t y) { plot(pixel, field.fractionAt(x, y)); });
}

}  // namespace krl
