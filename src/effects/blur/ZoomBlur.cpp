#include <algorithm>
#include <bit>
#include <cmath>

#include "catalogue/Catalogue.h"
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

/// What all tiles of a zoom share.
struct Zoom {
    Point point;
    double step;
    double scale;  ///< samples for each pixel of distance
    double error;
};

/// The rays of a tile: direction toward the point, distance from it, and how many samples each has.
struct TileRays {
    double alongX[PathTile::kPixels], alongY[PathTile::kPixels], distance[PathTile::kPixels];
    int32_t samples[PathTile::kPixels];
};

/// Casts the rays of a row of pixels, the first of which is `across` and `down` from the point.
KRL_VECTOR_LEVELS
void castRow(double across, double down, int32_t count, double scale, double* __restrict alongX,
             double* __restrict alongY, double* __restrict distances, int32_t* __restrict samples) {
    for (int32_t i = 0; i < count; ++i) {
        const double dx = across - i, distance = std::sqrt(dx * dx + down * down);
        const double divisor = distance > 0 ? distance : 1.0;
        alongX[i] = dx / divisor;
        alongY[i] = down / divisor;
        distances[i] = distance;
        samples[i] = truncate(distance * scale);
    }
}

/// How far the rays of a tile are walked, in fixed point from the tile's first pixel.
struct WalkedRays {
    int32_t x[PathTile::kPixels], y[PathTile::kPixels];
    int32_t stepX[PathTile::kPixels], stepY[PathTile::kPixels];
};

/// Puts the rays at sample `k`. Half a pixel makes truncation round.
KRL_VECTOR_LEVELS
void startAt(const TileRays& rays, PathTile tile, double walked, double step, double unit, WalkedRays& to) {
    for (int32_t row = 0; row < tile.height; ++row)
        for (int32_t column = 0; column < tile.width; ++column) {
            const int32_t i = row * tile.width + column;
            to.x[i] = static_cast<int32_t>((column + 0.5 - rays.alongX[i] * walked) * unit);
            to.y[i] = static_cast<int32_t>((row + 0.5 - rays.alongY[i] * walked) * unit);
            to.stepX[i] = static_cast<int32_t>(-rays.alongX[i] * step * unit);
            to.stepY[i] = static_cast<int32_t>(-rays.alongY[i] * step * unit);
        }
}

/// Places the next sample of every ray.
KRL_VECTOR_LEVELS
void advance(PathTile tile, FixedPlaces fixed, WalkedRays& rays, TilePlaces& places) {
    for (int32_t row = 0; row < tile.height; ++row) {
        int32_t any = 0;
        for (int32_t i = row * tile.width; i < (row + 1) * tile.width; ++i) {
            places.offset[i] = fixed.offset(rays.x[i], rays.y[i], places.doubt[i]);
            any |= places.doubt[i];
            rays.x[i] += rays.stepX[i];
            rays.y[i] += rays.stepY[i];
        }
        places.rowDoubt[row] = any;
    }
}

/// Leaves out sample `k` of the rays that have fewer.
KRL_VECTOR_LEVELS
void leaveOutEnded(const TileRays& rays, int32_t pixels, int32_t k, int32_t nothing, TilePlaces& places) {
    for (int32_t i = 0; i < pixels; ++i) {
        const bool ended = k >= rays.samples[i];
        places.offset[i] = ended ? nothing : places.offset[i];
    }
}

struct Range {
    int32_t least, most;
};

Range rangeOf(const int32_t* numbers, int32_t count) {
    Range range{numbers[0], numbers[0]};
    for (int32_t i = 1; i < count; ++i) {
        range.least = numbers[i] < range.least ? numbers[i] : range.least;
        range.most = numbers[i] > range.most ? numbers[i] : range.most;
    }
    return range;
}

class ZoomedTile {
public:
    ZoomedTile(const ImageEngine& engine, const PathSource& source, const Zoom& zoom, const PathTile& tile,
               ChannelTarget target)
        : engine_(engine),
          source_(source),
          zoom_(zoom),
          tile_(tile),
          target_(target),
          isWeighted_(target == ChannelTarget::RGBA),
          sums_(engine, source, isWeighted_),
          hasWrapped_(TileReach(zoom.point, tile).hasWrapped) {
        castRays();
        const int32_t pixels = tile.count();
        std::copy_n(rays_.samples, pixels, counts_);
        most_ = rangeOf(counts_, pixels).most;
        if (most_ <= longRay()) return;
        for (int32_t i = 0; i < pixels; ++i)
            if (isLong(i)) rays_.samples[i] = 0;
    }

    void blur() {
        const auto [shortest, longest] = rangeOf(rays_.samples, tile_.count());
        // Places are limited to 2^30 units from the tile, and the steps of a ray are rounded: it is put where
        // it belongs after some.
        constexpr int32_t kSteps = 64, kFewestBits = 12;
        const int32_t bits =
            29 -
            static_cast<int32_t>(std::bit_width(static_cast<uint64_t>(int64_t(longest) + PathTile::kWidth)));
        const bool isFixed = !hasWrapped_ && bits >= kFewestBits;
        FixedPlaces fixed{bits, 0, tile_.left, tile_.top, source_.width(), source_.height()};
        const double unit = isFixed ? fixed.unit() : 1;
        fixed.error = kSteps + 2 + static_cast<int32_t>(zoom_.error * unit);
        for (int32_t k = 0; k < longest; ++k) {
            if (isFixed) {
                if (k % kSteps == 0) startAt(rays_, tile_, zoom_.step * k, zoom_.step, unit, walked_);
                advance(tile_, fixed, walked_, places_);
                places_.settle(tile_, [&](int32_t i) { places_.offset[i] = offsetOf(i, k); });
            } else {
                for (int32_t i = 0; i < tile_.count(); ++i) places_.offset[i] = offsetOf(i, k);
            }
            if (k >= shortest) leaveOutEnded(rays_, tile_.count(), k, source_.nothing(), places_);
            sums_.add(places_.offset, tile_.count());
        }
        write();
    }

private:
    PointReach reachOf(int32_t i) const { return {zoom_.point, tile_.x(i), tile_.y(i)}; }
    Ray rayOf(int32_t i) const { return {zoom_.point, reachOf(i), zoom_.step}; }

    void castRays() {
        if (hasWrapped_) {
            for (int32_t i = 0; i < tile_.count(); ++i) {
                const Ray ray = rayOf(i);
                rays_.alongX[i] = ray.cosine;
                rays_.alongY[i] = ray.sine;
                rays_.distance[i] = ray.distance;
                rays_.samples[i] = truncate(ray.distance * zoom_.scale);
            }
            return;
        }
        for (int32_t row = 0, i = 0; row < tile_.height; ++row, i += tile_.width)
            castRow(double(zoom_.point.x) - tile_.left, double(zoom_.point.y) - (tile_.top + row),
                    tile_.width, zoom_.scale, rays_.alongX + i, rays_.alongY + i, rays_.distance + i,
                    rays_.samples + i);
    }

    /// Offset of sample `k` of pixel `i`, by its definition unless double precision is good enough.
    int32_t offsetOf(int32_t i, int32_t k) const {
        const double d = rays_.distance[i] + zoom_.step * k;
        const Placement place(zoom_.point.x + 0.5 - rays_.alongX[i] * d,
                              zoom_.point.y + 0.5 - rays_.alongY[i] * d, source_.width(), source_.height(),
                              zoom_.error);
        return place.doubt ? rayOf(i).offsetAt(k, source_) : place.offset;
    }

    /// A ray that is much longer than the picture keeps sampling the same pixels of its border, and is
    /// summed by itself, many equal samples at once.
    int64_t longRay() const { return 4 * (int64_t(source_.width()) + source_.height()); }
    bool isLong(int32_t i) const { return counts_[i] > longRay(); }
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

    void write() {
        for (int32_t i = 0; most_ > longRay() && i < tile_.count(); ++i)
            if (isLong(i)) sumLongRay(i);
        Pixel means[PathTile::kPixels];
        sums_.means(tile_.count(), counts_, most_, means);
        const ChannelMask mask(target_), onlyAlpha(ChannelTarget::Alpha);
        if (!isWeighted_ && rangeOf(counts_, tile_.count()).least > 0)
            return writeTile(tile_, *engine_.buffer(), means, mask);
        forEachPixelOf(tile_, *engine_.buffer(), [&](int32_t i, Pixel& p) {
            if (counts_[i] <= 0) return;
            p = (isWeighted_ && sums_.weight(i) == 0.0f ? onlyAlpha : mask).merge(p, means[i]);
        });
    }

    const ImageEngine& engine_;
    const PathSource& source_;
    const Zoom& zoom_;
    const PathTile& tile_;
    ChannelTarget target_;
    bool isWeighted_;
    TileSums sums_;
    bool hasWrapped_;
    TileRays rays_;
    WalkedRays walked_;
    TilePlaces places_;
    int32_t counts_[PathTile::kPixels], most_;
};

}  // namespace

/// The mean of samples along the ray through a point.
Status zoomBlur(ImageEngine& engine, int32_t zoomLength, Point zoomPoint, ZoomDirection direction,
                ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (isUnset(target)) return kStatusOk;
    const PathSource source(engine, target == ChannelTarget::RGBA);
    if (source.status()) return source.status();
    const double diagonal = std::sqrt(double(PointReach::sumOfSquares(source.height(), source.width())));
    const Zoom zoom{zoomPoint, direction == ZoomDirection::Out ? -1.0 : 1.0, 1.0 / diagonal * zoomLength,
                    1e-9 + placeRoundings(zoomPoint, source)};
    return forEachPathTile(
        engine, [&](const PathTile& tile) { ZoomedTile(engine, source, zoom, tile, target).blur(); });
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
