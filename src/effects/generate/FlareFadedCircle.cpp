#include <cmath>

#include "core/Numbers.h"
#include "effects/generate/FlareElements.h"

namespace krl {

namespace {

/// The profile of a ring from inside to outside: up the inner feather, flat to the outer thickness, down
/// the outer feather.
class RingProfile {
public:
    explicit RingProfile(const FlareElement& circle)
        : brightness_(circle.brightness),
          outerFeather_(circle.outerFeather),
          innerFeather_(circle.innerFeather),
          outerEdge_(static_cast<float>(double{circle.outerThickness} + circle.radius + circle.outerFeather)),
          flatOuter_(static_cast<float>(double{circle.outerThickness} + circle.radius)),
          radius_(circle.radius),
          flatInner_(static_cast<float>(double{circle.radius} - circle.innerThickness)),
          innerEdge_(static_cast<float>(double{flatInner_} - circle.innerFeather)),
          outerSlope_(circle.outerFeather != 0 ? brightness_ / circle.outerFeather : 0.0),
          innerSlope_(circle.innerFeather != 0 ? brightness_ / circle.innerFeather : 0.0) {}

    float outerEdge() const { return outerEdge_; }
    bool covers(float d) const { return innerEdge_ <= d && d <= outerEdge_; }

    /// Value at distance `d` under `fade`, limited to a byte; negative where the ring has nothing.
    int32_t at(float d, double fade) const {
        if (outerFeather_ > 0 && flatOuter_ < d && d <= outerEdge_)
            return truncatedByte((double{outerEdge_} - d) * outerSlope_ * fade);
        if ((radius_ <= d && d <= flatOuter_) || (flatInner_ <= d && d < radius_))
            return truncatedByte(brightness_ * fade);
        if (innerFeather_ > 0 && innerEdge_ <= d && d < flatInner_) {
            const double missing = clampTo((double{flatInner_} - d) * innerSlope_, 0.0, 255.0);
            return truncatedByte((brightness_ - missing) * fade);
        }
        return -1;
    }

private:
    double brightness_;
    float outerFeather_, innerFeather_;
    float outerEdge_, flatOuter_, radius_, flatInner_, innerEdge_;
    double outerSlope_, innerSlope_;
};

/// Full light, and more, around the picture's centre; none from nine tenths of half its longer side on: the
/// logarithm of ten times the share of the way that is left.
class CentreFade {
public:
    explicit CentreFade(const ImageBuffer& image)
        : centreX_(image.width / 2),
          centreY_(image.height / 2),
          reach_(static_cast<float>(std::max(image.width, image.height) * 0.5)) {}

    /// The value that a function of the fade has at a place.
    template <class Value>
    int32_t apply(int32_t x, int32_t y, Value&& value) const {
        const double nearness = (1.0 - distanceBetween(centreX_, centreY_, x, y) / double{reach_}) * 10.0;
        if (!(nearness > 0)) return value(nearness == 0 ? -INFINITY : 0.0);
        const double rough = roughLogarithm(nearness), error = 1e-12;
        const int32_t least = value(rough - error);
        return least == value(rough + error) ? least : value(exactLogarithm(nearness));
    }

private:
    int32_t centreX_, centreY_;
    float reach_;
};

}  // namespace

void paintFadedCircle(const FlareState& state, const FlareElement& circle) {
    const FlarePlot plot(state, circle);
    const RingProfile ring(circle);
    const CentreFade fade(state.image);
    const Point origin = circle.origin;
    forEachBandOfRows(state, boxAround(state, origin, ring.outerEdge()), [&](const GridBox& part) {
        forEachPixelOf(state, part, [&](Pixel& pixel, int32_t x, int32_t y) {
            const float d = distanceBetween(x, y, origin.x, origin.y);
            if (!ring.covers(d)) return;
            const int32_t value = fade.apply(x, y, [&](double faded) { return ring.at(d, faded); });
            if (value >= 0) plot(pixel, value);
        });
    });
}

}  // namespace krl
