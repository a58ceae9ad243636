#include <cmath>
#include <new>

#include "catalogue/Catalogue.h"
#include "core/Doubts.h"
#include "core/ExactFunctions.h"
#include "core/VectorLevels.h"
#include "effects/blur/BlurChoices.h"
#include "kernels/path/PathTile.h"
#include "kernels/sample/Trigonometry.h"
#include "krlimage/blur.h"

namespace krl {

namespace {

/// Degrees between two tests for cancellation: an arc can be millions of degrees long.
constexpr int32_t kAtOnce = 4096;

/// Sine and cosine of every degree of the arc.
class ArcTables {
public:
    ArcTables(const ImageEngine& engine, int32_t degrees)
        : count_(2 * int64_t(degrees) + 1), cosines_(limited(count_)), sines_(limited(count_)) {
        for (int64_t i = 0; i < count_; ++i) {
            if (i % kAtOnce == 0) engine.throwIfCancelled();
            const double angle = double(i - degrees) * kRadiansPerDegree;
            cosines_[static_cast<size_t>(i)] = exactCosine(angle);
            sines_[static_cast<size_t>(i)] = exactSine(angle);
        }
    }
    int32_t count() const { return static_cast<int32_t>(count_); }
    double cosine(int32_t n) const { return cosines_[static_cast<size_t>(n)]; }
    double sine(int32_t n) const { return sines_[static_cast<size_t>(n)]; }

private:
    /// Tables are limited to 2 GiB.
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

    /// `angleSize` is the size of the pixel's angle, within some 1e-14.
    Circle(Point point, const PointReach& reach, double angleSize) : centre(point) {
        constexpr double kError = 2e-14;
        const double rough = std::copysign(angleSize, double(reach.dy));
        radius = reach.distance;
        angle = static_cast<float>(rough + kError);
        if (angle != static_cast<float>(rough - kError)) angle = static_cast<float>(reach.angle());
        if (reach.hasWrapped) {
            alongX = exactCosine(double(angle)) * radius;
            alongY = exactSine(double(angle)) * radius;
        } else {
            // The rounding turns the pixel's own direction by so little that two terms of its sine and
            // cosine are all of them.
            const double turn = angle - rough, shrink = 1.0 - turn * turn / 2;
            alongX = reach.dx * shrink - reach.dy * turn;
            alongY = reach.dy * shrink + reach.dx * turn;
        }
    }

    /// Offset of the sample `degree` degrees on, by its definition.
    int32_t offsetAt(int32_t degree, const PathSource& source) const {
        const double t = degree * kRadiansPerDegree + angle;
        const int32_t x = placeWithin(centre.x - exactCosine(t) * radius, source.width());
        return placeWithin(centre.y - exactSine(t) * radius, source.height()) * source.width() + x;
    }
};

/// Calls `visit(i, circle)` for the circles of `count` pixels from (`x`, `y`) on in a row of a tile.
template <class Visit>
void forCirclesOfRow(Point point, int32_t x, int32_t y, int32_t count, Visit&& visit) {
    double across[PathTile::kWidth] = {}, sizes[PathTile::kWidth];
    for (int32_t i = 0; i < count; ++i) across[i] = PointReach(point, x + i, y).dx;
    angleSizes(across, PointReach(point, x, y).dy, sizes, static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) visit(i, Circle(point, PointReach(point, x + i, y), sizes[i]));
}

/// The circles of a tile, as far as they are turned.
struct TileCircles {
    double alongX[PathTile::kPixels], alongY[PathTile::kPixels];

    TileCircles(const PathTile& tile, Point point) {
        for (int32_t row = 0; row < tile.height; ++row)
            forCirclesOfRow(point, tile.left, tile.top + row, tile.width,
                            [&](int32_t i, const Circle& circle) {
                                alongX[row * tile.width + i] = circle.alongX;
                                alongY[row * tile.width + i] = circle.alongY;
                            });
    }
};

/// Turns every circle of a tile by one angle; returns whether any place is in doubt.
KRL_VECTOR_LEVELS
bool turn(const TileCircles& circles, int32_t count, double cosine, double sine, Point centre, int32_t width,
          int32_t height, double error, TilePlaces& places) {
    const double centreX = centre.x, centreY = centre.y;
    int32_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const double x = centreX - (circles.alongX[i] * cosine - circles.alongY[i] * sine);
        const double y = centreY - (circles.alongY[i] * cosine + circles.alongX[i] * sine);
        const Placement place(x, y, width, height, error);
        places.offset[i] = place.offset;
        places.doubt[i] = place.doubt;
        any |= place.doubt;
    }
    return any != 0;
}

template <ChannelTarget kTarget>
Status blurArcs(ImageEngine& engine, int32_t degrees, Point point) {
    constexpr bool kWeighted = kTarget == ChannelTarget::RGBA;
    const ArcTables arc(engine, degrees);
    const PathSource source(engine, kWeighted);
    if (source.status()) return source.status();
    // The larger an angle, the more it is rounded.
    const double error = placeError(point, source) + degrees * 1e-12;
    return forEachPathTile(engine, [&](const PathTile& tile) {
        const int32_t pixels = tile.count();
        const TileCircles circles(tile, point);
        TilePlaces places;
        TileSums<kWeighted> sums(engine, source);
        for (int32_t n = 0; n < arc.count(); ++n) {
            if (n % kAtOnce == 0) engine.throwIfCancelled();
            const bool any = turn(circles, pixels, arc.cosine(n), arc.sine(n), point, source.width(),
                                  source.height(), error, places);
            settleDoubts(any, places.doubt, pixels, [&](int32_t i) {
                forCirclesOfRow(point, tile.x(i), tile.y(i), 1, [&](int32_t, const Circle& circle) {
                    places.offset[i] = circle.offsetAt(n - degrees, source);
                });
            });
            sums.add(places.offset, pixels);
        }
        sums.gather();
        for (int32_t i = 0; i < pixels; ++i) {
            Pixel& p = engine.buffer()->row(tile.y(i))[tile.x(i)];
            if constexpr (!kWeighted)
                p = ChannelMask(kTarget).merge(p, sums[i].mean(arc.count()));
            else if (sums[i].weight != 0.0f)
                p = sums[i].weighted(arc.count());
        }
    });
}

}  // namespace

/// The mean of samples along an arc about a point.
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

void describeRadialBlur(Catalogue& catalogue) {
    catalogue.add("krlImageRadialBlur", radialBlur)
        .summary("Turns the picture about a point while it is exposed.")
        .words("spin, rotate, turn, rotation")
        .integer("radialLength", {.from = 0, .to = 45, .example = 6, .least = 0, .neutral = 0},
                 "degrees to each side; one sample is taken for each")
        .point("radialPoint", {.x = 0.5, .y = 0.5}, "what the picture turns about")
        .symbol("colourOrAlpha", anyChannels(), kUnsetTarget, kWeighedMeaning)
        .showing("RGB")
        .inputFailure("Radial Blur input failure (Image)")
        .failed("Failed Radial Blur function (Image)");
}

}  // namespace krl
