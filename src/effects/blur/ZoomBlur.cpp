#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/Doubts.h"
#include "core/ExactFunctions.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/path/PathTile.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

/// The ray through one pixel and the point, by its definition.
struct Ray {
    Point point;
    double distance, cosine, sine;
    double step;  ///< 1 away from the point, -1 toward it

    Ray(Point origin, const PointReach& reach, double away)
        : point(origin),
          distance(reach.distance),
          cosine(exactCosine(reach.angle())),
          sine(exactSine(reach.angle())),
          step(away) {}

    /// Offset of sample `k`.
    int32_t offsetAt(int64_t k, const PathSource& source) const {
        const auto nearest = [](double v, int32_t size) {
            return placeWithin(v < 0 ? v - 0.5 : v + 0.5, size);
        };
        const double d = distance + step * double(k);
        const int32_t column = nearest(point.x - cosine * d, source.width());
        return nearest(point.y - sine * d, source.height()) * source.width() + column;
    }
};

/// The rays of a tile: direction toward the point, distance from it, and how many samples each has.
struct TileRays {
    double alongX[PathTile::kPixels], alongY[PathTile::kPixels], distance[PathTile::kPixels];
    int32_t count[PathTile::kPixels];

    void set(int32_t i, const PointReach& reach, int32_t samples) {
        alongX[i] = reach.hasWrapped ? exactCosine(reach.angle()) : reach.dx / reach.distance;
        alongY[i] = reach.hasWrapped ? exactSine(reach.angle()) : reach.dy / reach.distance;
        distance[i] = reach.distance;
        count[i] = samples;
    }
};

/// What of a zoom all tiles share.
struct Zoom {
    Point point;
    double step;
    int32_t width, height, nothing;
    double error;
};

/// Places sample `k` of every ray of a tile that has as many; returns whether any place is in doubt.
KRL_VECTOR_LEVELS
bool advance(const TileRays& rays, int32_t pixels, int32_t k, const Zoom& zoom, TilePlaces& places) {
    const double pointX = zoom.point.x + 0.5, pointY = zoom.point.y + 0.5, walked = zoom.step * k;
    int32_t any = 0;
    for (int32_t i = 0; i < pixels; ++i) {
        const double d = rays.distance[i] + walked;
        const Placement place(pointX - rays.alongX[i] * d, pointY - rays.alongY[i] * d, zoom.width,
                              zoom.height, zoom.error);
        const int32_t onRay = k < rays.count[i] ? -1 : 0;
        places.offset[i] = zoom.nothing + ((place.offset - zoom.nothing) & onRay);
        places.doubt[i] = place.doubt & onRay;
        any |= places.doubt[i];
    }
    return any != 0;
}

template <ChannelTarget kTarget>
class ZoomedTile {
public:
    static constexpr bool kWeighted = kTarget == ChannelTarget::RGBA;

    ZoomedTile(const ImageEngine& engine, const PathSource& source, const Zoom& zoom, double scale,
               const PathTile& tile)
        : image_(*engine.buffer()), source_(source), zoom_(zoom), tile_(tile), sums_(engine, source) {
        for (int32_t i = 0; i < tile.count(); ++i) {
            const PointReach reach = reachOf(i);
            counts_[i] = truncate(reach.distance * scale);
            rays_.set(i, reach, isLong(i) ? 0 : counts_[i]);
        }
    }

    void blur() {
        const int32_t longest = *std::max_element(rays_.count, rays_.count + tile_.count());
        for (int32_t k = 0; k < longest; ++k) {
            const bool any = advance(rays_, tile_.count(), k, zoom_, places_);
            settleDoubts(any, places_.doubt, tile_.count(),
                         [&](int32_t i) { places_.offset[i] = rayOf(i).offsetAt(k, source_); });
            sums_.add(places_.offset, tile_.count());
        }
        sums_.gather();
        for (int32_t i = 0; i < tile_.count(); ++i) {
            if (isLong(i)) sumLongRay(i);
            if (counts_[i] > 0) write(i);
        }
    }

private:
    PointReach reachOf(int32_t i) const { return {zoom_.point, tile_.x(i), tile_.y(i)}; }
    Ray rayOf(int32_t i) const { return {zoom_.point, reachOf(i), zoom_.step}; }

    /// A ray that is much longer than the picture keeps sampling the same pixels of its border, and is
    /// summed by itself, many equal samples at once.
    bool isLong(int32_t i) const { return counts_[i] > 4 * (int64_t(zoom_.width) + zoom_.height); }
    void sumLongRay(int32_t i) {
        const Ray ray = rayOf(i);
        for (int64_t first = 0; first < counts_[i];) {
            const int32_t offset = ray.offsetAt(first, source_);
            const int64_t end =
                endOfSpan(first, counts_[i], [&](int64_t k) { return ray.offsetAt(k, source_) == offset; });
            sums_.addRepeatedly(i, offset, end - first);
            first = end;
        }
    }

    void write(int32_t i) {
        Pixel& p = image_.row(tile_.y(i))[tile_.x(i)];
        if constexpr (!kWeighted)
            p = ChannelMask(kTarget).merge(p, sums_[i].mean(counts_[i]));
        else if (sums_[i].weight != 0.0f)
            p = sums_[i].weighted(counts_[i]);
        else
            p.alpha = sums_[i].meanAlpha(counts_[i]);
    }

    const ImageBuffer& image_;
    const PathSource& source_;
    const Zoom& zoom_;
    const PathTile& tile_;
    TileRays rays_;
    TilePlaces places_;
    TileSums<kWeighted> sums_;
    int32_t counts_[PathTile::kPixels];
};

template <ChannelTarget kTarget>
Status blurRays(ImageEngine& engine, int32_t zoomLength, Point point, ZoomDirection direction) {
    const PathSource source(engine, ZoomedTile<kTarget>::kWeighted);
    if (source.status()) return source.status();
    const double diagonal = std::sqrt(double(PointReach::sumOfSquares(source.height(), source.width())));
    const double scale = 1.0 / diagonal * zoomLength;
    const Zoom zoom{point,
                    direction == ZoomDirection::Out ? -1.0 : 1.0,
                    source.width(),
                    source.height(),
                    source.nothing(),
                    placeError(point, source)};
    return forEachPathTile(
        engine, [&](const PathTile& tile) { ZoomedTile<kTarget>(engine, source, zoom, scale, tile).blur(); });
}

}  // namespace

/// The mean of samples along the ray through a point.
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

void describeZoomBlur(Catalogue& catalogue) {
    catalogue.add("krlImageZoomBlur", zoomBlur)
        .summary("Zooms while the picture is exposed: sharp at a point, more smeared the further out.")
        .words("speed, explosion, zoom, rush")
        .integer("zoomLength",
                 {.from = 0, .to = 200, .example = 60, .least = 0, .neutral = 0, .pixels = true},
                 "pixels of smear at a distance of one whole diagonal from the point")
        .point("zoomPoint", {.x = 0.5, .y = 0.5}, "what stays sharp")
        .symbol("direction", {{"in", ZoomDirection::In}, {"out", ZoomDirection::Out}},
                refused("Zoom Blur invalid input direction (Image)"),
                "gathers from further out, or from nearer the point")
        .symbol("colourOrAlpha", anyChannels(), kUnsetTarget, kWeighedMeaning)
        .showing("RGB")
        .needsEngine()
        .inputFailure("Zoom Blur input failure (Image)")
        .failed("Failed Zoom Blur function (Image)");
}

}  // namespace krl
