#include <cmath>

#include "core/Clones.h"
#include "filters/ChannelMask.h"
#include "filters/PathBlur.h"
#include "filters/PathSum.h"

namespace krl {

namespace {

/// The ray through one pixel and the point.
struct Ray {
    Point point;
    PointReach reach;
    double alongX, alongY;  ///< the ray's direction, toward the point
    double step;            ///< 1 away from the point, -1 toward it

    Ray(Point origin, int32_t x, int32_t y, ZoomDirection direction)
        : point(origin), reach(origin, x, y), step(direction == ZoomDirection::Out ? -1.0 : 1.0) {
        alongX = reach.hasWrapped ? std::cos(reach.angle()) : reach.dx / reach.distance;
        alongY = reach.hasWrapped ? std::sin(reach.angle()) : reach.dy / reach.distance;
    }

    /// Offset of sample `k`, by its definition.
    int32_t offsetAt(int32_t k, int32_t width, int32_t height) const {
        const auto nearest = [](double v, int32_t size) {
            return placeWithin(v < 0 ? v - 0.5 : v + 0.5, size);
        };
        const double angle = reach.angle(), d = reach.distance + step * k;
        const int32_t column = nearest(point.x - std::cos(angle) * d, width);
        return nearest(point.y - std::sin(angle) * d, height) * width + column;
    }
};

/// Offsets of `count` samples from number `first` on, by the ray's direction; returns whether any of
/// them is in doubt, and tells which.
KRL_WIDE_CLONES
bool walkAlong(const Ray& ray, int32_t first, int32_t count, int32_t width, int32_t height, int32_t* offsets,
               int32_t* doubts) {
    const double alongX = ray.alongX, alongY = ray.alongY, step = ray.step;
    const double start = ray.reach.distance + step * first;
    const double pointX = ray.point.x + 0.5, pointY = ray.point.y + 0.5;
    int32_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const double d = start + step * i;
        const double x = pointX - alongX * d, y = pointY - alongY * d;
        const Placement place(x, y, width, height, kPlaceError);
        offsets[i] = place.offset;
        doubts[i] = place.doubt;
        any |= doubts[i];
    }
    return any != 0;
}

/// Sums `count` samples of a ray. A ray that is much longer than the picture keeps sampling the same
/// pixels of its border, and is summed run by run of equal samples.
template <bool kWeighted>
void sumRay(const Ray& ray, int32_t count, const PathSource& source, PathSum<kWeighted>& sum) {
    constexpr int32_t kRun = 64;
    int32_t offsets[kRun], doubts[kRun];
    const int32_t width = source.width(), height = source.height();
    const auto offsetAt = [&](int64_t k) { return ray.offsetAt(static_cast<int32_t>(k), width, height); };
    if (count > 4 * (int64_t(width) + height)) {
        for (int64_t first = 0; first < count;) {
            const int32_t offset = offsetAt(first);
            const int64_t end = endOfRun(first, count, [&](int64_t k) { return offsetAt(k) == offset; });
            sum.addRepeatedly(source.pixels()[offset], end - first);
            first = end;
        }
        return;
    }
    for (int32_t first = 0; first < count; first += kRun) {
        const int32_t run = std::min(kRun, count - first);
        if (walkAlong(ray, first, run, width, height, offsets, doubts))
            for (int32_t i = 0; i < run; ++i)
                if (doubts[i]) offsets[i] = offsetAt(first + i);
        sum.add(source.pixels(), offsets, run);
    }
}

template <ChannelTarget kTarget>
Status blurRays(ImageEngine& engine, int32_t zoomLength, Point point, ZoomDirection direction) {
    constexpr bool kWeighted = kTarget == ChannelTarget::RGBA;
    const PathSource source(engine, kWeighted);
    const int32_t width = source.width(), height = source.height();
    const double diagonal = std::sqrt(double(PointReach::sumOfSquares(height, width)));
    const double scale = 1.0 / diagonal * zoomLength;
    return forEachRow(engine, [&](Pixel* row, int32_t y) {
        for (int32_t x = 0; x < width; ++x) {
            const Ray ray(point, x, y, direction);
            const int32_t count = truncate(ray.reach.distance * scale);
            if (count <= 0) continue;
            PathSum<kWeighted> sum(engine.tables());
            sumRay(ray, count, source, sum);
            if constexpr (kWeighted) {
                if (sum.weight() != 0.0f)
                    row[x] = sum.weighted(count);
                else
                    row[x].alpha = sum.meanAlpha(count);
            } else {
                row[x] = ChannelMask(kTarget).merge(row[x], sum.mean(count));
            }
        }
    });
}

}  // namespace

Status zoomBlur(ImageEngine& engine, int32_t zoomLength, Point zoomPoint, ZoomDirection direction,
                ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    switch (target) {
        case ChannelTarget::RGBA:
            return blurRays<ChannelTarget::RGBA>(engine, zoomLength, zoomPoint, direction);
        case ChannelTarget::RGB:
            return blurRays<ChannelTarget::RGB>(engine, zoomLength, zoomPoint, direction);
        case ChannelTarget::Alpha:
            return blurRays<ChannelTarget::Alpha>(engine, zoomLength, zoomPoint, direction);
        default:
            return kStatusOk;
    }
}

}  // namespace krl
