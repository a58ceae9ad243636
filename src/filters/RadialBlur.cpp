#include <cmath>
#include <new>

#include "core/Clones.h"
#include "filters/ChannelMask.h"
#include "filters/PathBlur.h"
#include "filters/PathSum.h"

namespace krl {

namespace {

/// Sine and cosine of every degree of the arc.
class ArcTables {
public:
    explicit ArcTables(int32_t degrees)
        : count_(2 * int64_t(degrees) + 1), cosines_(limited(count_)), sines_(limited(count_)) {
        for (int64_t i = 0; i < count_; ++i) {
            const double angle = double(i - degrees) * kRadiansPerDegree;
            cosines_[static_cast<size_t>(i)] = std::cos(angle);
            sines_[static_cast<size_t>(i)] = std::sin(angle);
        }
    }
    int32_t count() const { return static_cast<int32_t>(count_); }
    const double* cosines() const { return cosines_.data(); }
    const double* sines() const { return sines_.data(); }

private:
    /// Tables past 2^31 bytes are not to be had.
    static size_t limited(int64_t count) {
        if (count > (int64_t(1) << 27)) throw std::bad_alloc();
        return static_cast<size_t>(count);
    }

    int64_t count_;
    Scratch<double> cosines_, sines_;
};

/// The circle through one pixel about the point.
struct Circle {
    Point centre;
    double radius;
    float angle;            ///< of the pixel's own place, as it is rounded
    double alongX, alongY;  ///< from the pixel to the centre, at the rounded angle

    Circle(Point point, int32_t x, int32_t y) : centre(point) {
        const PointReach reach(point, x, y);
        const double exactAngle = reach.angle();
        radius = reach.distance;
        angle = static_cast<float>(exactAngle);
        if (reach.hasWrapped) {
            alongX = std::cos(double(angle)) * radius;
            alongY = std::sin(double(angle)) * radius;
        } else {
            // The rounding turns the pixel's own direction by so little that two terms of its sine and
            // cosine are all of them.
            const double turn = angle - exactAngle, shrink = 1.0 - turn * turn / 2;
            alongX = reach.dx * shrink - reach.dy * turn;
            alongY = reach.dy * shrink + reach.dx * turn;
        }
    }

    /// Offset of the sample `degree` degrees on, by its definition.
    int32_t offsetAt(int32_t degree, int32_t width, int32_t height) const {
        const double t = degree * kRadiansPerDegree + angle;
        const int32_t x = placeWithin(centre.x - std::cos(t) * radius, width);
        return placeWithin(centre.y - std::sin(t) * radius, height) * width + x;
    }
};

/// Offsets of a run of the arc's samples, by turning the circle's own direction through the tables;
/// returns whether any of them is in doubt, and tells which.
KRL_WIDE_CLONES
bool turnThrough(const Circle& circle, const double* cosines, const double* sines, int32_t count,
                 int32_t width, int32_t height, double error, int32_t* offsets, int32_t* doubts) {
    const double alongX = circle.alongX, alongY = circle.alongY;
    const double centreX = circle.centre.x, centreY = circle.centre.y;
    int32_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const double x = centreX - (alongX * cosines[i] - alongY * sines[i]);
        const double y = centreY - (alongY * cosines[i] + alongX * sines[i]);
        const Placement place(x, y, width, height, error);
        offsets[i] = place.offset;
        doubts[i] = place.doubt;
        any |= doubts[i];
    }
    return any != 0;
}

template <ChannelTarget kTarget>
Status blurArcs(ImageEngine& engine, int32_t degrees, Point point) {
    constexpr bool kWeighted = kTarget == ChannelTarget::RGBA;
    constexpr int32_t kRun = 256;
    const ArcTables arc(degrees);
    const PathSource source(engine, kWeighted);
    const int32_t width = source.width(), height = source.height(), count = arc.count();
    const double error = kPlaceError + degrees * 1e-12;  // angles round the more the larger they are
    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        int32_t offsets[kRun], doubts[kRun];
        for (int32_t x = 0; x < width; ++x) {
            const Circle circle(point, x, y);
            PathSum<kWeighted> sum(engine.tables());
            for (int32_t first = 0; first < count; first += kRun) {
                const int32_t run = std::min(kRun, count - first);
                if (turnThrough(circle, arc.cosines() + first, arc.sines() + first, run, width, height, error,
                                offsets, doubts))
                    for (int32_t i = 0; i < run; ++i)
                        if (doubts[i]) offsets[i] = circle.offsetAt(first + i - degrees, width, height);
                sum.add(source.pixels(), offsets, run);
            }
            if constexpr (kWeighted) {
                if (sum.weight() != 0.0f) row[x] = sum.weighted(count);
            } else {
                row[x] = ChannelMask(kTarget).merge(row[x], sum.mean(count));
            }
        }
    });
}

}  // namespace

Status radialBlur(ImageEngine& engine, int32_t radialLength, Point radialPoint, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (radialLength < 1) return kStatusOk;
    switch (target) {
        case ChannelTarget::RGBA:
            return blurArcs<ChannelTarget::RGBA>(engine, radialLength, radialPoint);
        case ChannelTarget::RGB:
            return blurArcs<ChannelTarget::RGB>(engine, radialLength, radialPoint);
        case ChannelTarget::Alpha:
            return blurArcs<ChannelTarget::Alpha>(engine, radialLength, radialPoint);
        default:
            return kStatusOk;
    }
}

}  // namespace krl
