#include <algorithm>
#include <cmath>
#include <new>

#include "catalogue/Catalogue.h"
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
    /// More than the error of an angle from `angleSizes`.
    static constexpr double kAngleError = 2e-14;

    Point centre;
    double radius;
    float angle;  ///< of the pixel's own place, as it is rounded

    Circle(Point point, int32_t x, int32_t y) : centre(point) {
        const PointReach reach(point, x, y);
        radius = reach.distance;
        angle = static_cast<float>(reach.angle());
    }

    /// From the pixel to the centre, at the rounded angle.
    double alongX() const { return exactCosine(double(angle)) * radius; }
    double alongY() const { return exactSine(double(angle)) * radius; }

    /// Offset of the sample `degree` degrees on, by its definition.
    int32_t offsetAt(int32_t degree, const PathSource& source) const {
        const double t = degree * kRadiansPerDegree + angle;
        const int32_t x = placeWithin(centre.x - exactCosine(t) * radius, source.width());
        return placeWithin(centre.y - exactSine(t) * radius, source.height()) * source.width() + x;
    }
};

/// From each pixel of a tile to the centre, at its rounded angle.
struct Directions {
    double alongX[PathTile::kPixels], alongY[PathTile::kPixels];
};

/// What an arc shares with all others of its tile.
struct Turn {
    double cosine, sine, centreX, centreY;

    double x(double alongX, double alongY) const { return centreX - (alongX * cosine - alongY * sine); }
    double y(double alongX, double alongY) const { return centreY - (alongY * cosine + alongX * sine); }
};

/// Finds the rounded directions of a row of pixels that are `across[i]` and `down` from the centre, at angles
/// of the given sizes. The rounding turns a pixel's own direction by so little that two terms of the sine and
/// cosine are all of them. Returns whether any rounding is in doubt.
KRL_VECTOR_LEVELS
bool roundDirections(const double* __restrict across, double down, const double* __restrict sizes,
                     int32_t count, double* __restrict alongX, double* __restrict alongY,
                     int32_t* __restrict doubts) {
    int32_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const double rough = down < 0 ? -sizes[i] : sizes[i];
        const auto angle = static_cast<float>(rough + Circle::kAngleError);
        doubts[i] = angle != static_cast<float>(rough - Circle::kAngleError) ? 1 : 0;
        any |= doubts[i];
        const double turn = angle - rough, shrink = 1.0 - turn * turn / 2;
        alongX[i] = across[i] * shrink - down * turn;
        alongY[i] = down * shrink + across[i] * turn;
    }
    return any != 0;
}

/// Places the whole tile in double precision, good enough where only the last roundings can differ.
KRL_VECTOR_LEVELS
void turnEach(const Directions& directions, PathTile tile, Turn turn, const PathSource& source, double error,
              TilePlaces& places) {
    for (int32_t row = 0; row < tile.height; ++row) {
        int32_t any = 0;
        for (int32_t i = row * tile.width; i < (row + 1) * tile.width; ++i) {
            const double alongX = directions.alongX[i], alongY = directions.alongY[i];
            const Placement place(turn.x(alongX, alongY), turn.y(alongX, alongY), source.width(),
                                  source.height(), error);
            places.offset[i] = place.offset;
            places.doubt[i] = -place.doubt;
            any |= places.doubt[i];
        }
        places.rowDoubt[row] = any;
    }
}

/// Where a tile's rows begin when turned, and the way from one pixel to the next, in fixed point.
struct TurnedRows {
    int32_t x[PathTile::kHeight], y[PathTile::kHeight], stepX, stepY;
};

/// Places the whole tile as if no angle were rounded: then turning it is one rotation for all of it.
KRL_VECTOR_LEVELS
void turnTogether(TurnedRows rows, PathTile tile, FixedPlaces fixed, TilePlaces& places) {
    for (int32_t row = 0; row < tile.height; ++row) {
        int32_t* offset = places.offset + row * tile.width;
        int32_t* doubt = places.doubt + row * tile.width;
        int32_t any = 0;
        for (int32_t i = 0; i < tile.width; ++i) {
            offset[i] = fixed.offset(rows.x[row] + i * rows.stepX, rows.y[row] + i * rows.stepY, doubt[i]);
            any |= doubt[i];
        }
        places.rowDoubt[row] = any;
    }
}

/// The arcs of a tile's pixels.
class TileArcs {
public:
    /// No arc has more than `degrees` to each side.
    TileArcs(const PathTile& tile, Point centre, const PathSource& source, int32_t degrees);

    /// Places the sample of every pixel `degree` degrees on.
    void place(int32_t degree, double cosine, double sine, TilePlaces& places) const {
        const Turn turn{cosine, sine, double(centre_.x), double(centre_.y)};
        // Quarter turns lead from pixels to pixels, where the rounding of the angle always decides.
        if (reach_.hasWrapped || degree % 90 == 0) {
            turnEach(directions_, tile_, turn, source_, error_, places);
            places.settle(tile_, [&](int32_t i) { places.offset[i] = exactOffset(i, degree); });
            return;
        }
        placeTogether(turn, places);
        places.settle(tile_, [&](int32_t i) {
            const double alongX = directions_.alongX[i], alongY = directions_.alongY[i];
            const Placement place(turn.x(alongX, alongY), turn.y(alongX, alongY), source_.width(),
                                  source_.height(), error_);
            places.offset[i] = place.doubt ? exactOffset(i, degree) : place.offset;
        });
    }

private:
    void setRow(int32_t row) {
        const int32_t y = tile_.top + row, first = row * tile_.width;
        double across[PathTile::kWidth] = {}, sizes[PathTile::kWidth];
        int32_t doubts[PathTile::kWidth];
        for (int32_t i = 0; i < tile_.width; ++i) across[i] = double(centre_.x) - (tile_.left + i);
        const double down = double(centre_.y) - y;
        angleSizes(across, down, sizes, static_cast<size_t>(tile_.width));
        const bool any = roundDirections(across, down, sizes, tile_.width, directions_.alongX + first,
                                         directions_.alongY + first, doubts);
        if (!any && !reach_.hasWrapped) return;
        for (int32_t i = 0; i < tile_.width; ++i) {
            if (!reach_.hasWrapped && !doubts[i]) continue;
            const Circle circle(centre_, tile_.left + i, y);
            directions_.alongX[first + i] = circle.alongX();
            directions_.alongY[first + i] = circle.alongY();
        }
    }

    void placeTogether(const Turn& turn, TilePlaces& places) const {
        // A rounded angle is wrong by up to half of the last bit of a `float` below 4.
        constexpr double kAngleRounding = 0x1.001p-23;
        constexpr int32_t kBits = 23;
        const double alongX = double(centre_.x) - tile_.left, alongY = double(centre_.y) - tile_.top;
        const double left = std::floor(turn.x(alongX, alongY)), top = std::floor(turn.y(alongX, alongY));
        FixedPlaces fixed{
            kBits,           0, static_cast<int32_t>(left), static_cast<int32_t>(top), source_.width(),
            source_.height()};
        const double unit = fixed.unit();
        // The steps of a row are rounded, each by half a unit at most, and so is where it begins.
        fixed.error = PathTile::kWidth / 2 + 2 +
                      static_cast<int32_t>((reach_.farthest * kAngleRounding + error_) * unit);
        TurnedRows rows;
        for (int32_t row = 0; row < tile_.height; ++row) {
            rows.x[row] = static_cast<int32_t>((turn.x(alongX, alongY - row) - left) * unit);
            rows.y[row] = static_cast<int32_t>((turn.y(alongX, alongY - row) - top) * unit);
        }
        rows.stepX = static_cast<int32_t>(std::lround(turn.cosine * unit));
        rows.stepY = static_cast<int32_t>(std::lround(turn.sine * unit));
        turnTogether(rows, tile_, fixed, places);
    }

    int32_t exactOffset(int32_t i, int32_t degree) const {
        return Circle(centre_, tile_.x(i), tile_.y(i)).offsetAt(degree, source_);
    }

    const PathTile& tile_;
    Point centre_;
    const PathSource& source_;
    double error_;
    TileReach reach_;
    Directions directions_;
};

TileArcs::TileArcs(const PathTile& tile, Point centre, const PathSource& source, int32_t degrees)
    : tile_(tile), centre_(centre), source_(source), reach_(centre, tile) {
    // An angle is wrong by twice `kAngleError` at most. The larger it is, the more it is rounded.
    error_ = 2 * Circle::kAngleError * reach_.farthest + placeRoundings(centre, source) + degrees * 1e-12;
    for (int32_t row = 0; row < tile.height; ++row) setRow(row);
}

/// The sums of a tile's arcs where colours may sum to more than single precision holds exactly: sums are
/// rounded to it after each sample.
class RoundedSums {
public:
    RoundedSums(const ImageEngine& engine, const PathSource& source, bool weighted)
        : units_(engine.tables().unitFromByte), pixels_(source.pixels()), weighted_(weighted) {}

    void add(const int32_t* offsets, int32_t count) {
        for (int32_t i = 0; i < count; ++i) {
            const Pixel p = pixels_[offsets[i]];
            for (size_t c = 0; c < 3; ++c) colours_[c][i] += p[c];
            alphas_[i] += p.alpha;
            weights_[i] += units_[p.alpha];
        }
    }
    void means(int32_t count, const int32_t* samples, int32_t, Pixel* results) const {
        for (int32_t i = 0; i < count; ++i) {
            const double divisor = weighted_ ? double(weights_[i]) : samples[i];
            for (size_t c = 0; c < 3; ++c) results[i][c] = quotientByte(colours_[c][i], divisor);
            results[i].alpha = quotientByte(static_cast<int32_t>(alphas_[i]), samples[i]);
        }
    }
    float weight(int32_t i) const { return weights_[i]; }

    /// Up to as many samples the rounding changes nothing.
    static constexpr int32_t kExactSamples = (1 << 24) / 255;

private:
    const float* units_;
    const Pixel* pixels_;
    bool weighted_;
    float colours_[3][PathTile::kPixels] = {}, weights_[PathTile::kPixels] = {};
    uint32_t alphas_[PathTile::kPixels] = {};
};

/// Sums the arcs of a tile and writes what they give.
template <class Sums>
void blurTile(const ImageEngine& engine, const PathTile& tile, const TileArcs& arcs, const ArcTables& table,
              Sums&& sums, ChannelTarget target) {
    const int32_t degrees = table.count() / 2;
    TilePlaces places;
    for (int32_t n = 0; n < table.count(); ++n) {
        if (n % kAtOnce == 0) engine.throwIfCancelled();
        arcs.place(n - degrees, table.cosine(n), table.sine(n), places);
        sums.add(places.offset, tile.count());
    }
    int32_t samples[PathTile::kPixels];
    std::fill_n(samples, tile.count(), table.count());
    Pixel means[PathTile::kPixels];
    sums.means(tile.count(), samples, table.count(), means);
    if (target != ChannelTarget::RGBA) return writeTile(tile, *engine.buffer(), means, ChannelMask(target));
    forEachPixelOf(tile, *engine.buffer(), [&](int32_t i, Pixel& p) {
        if (sums.weight(i) != 0.0f) p = means[i];
    });
}

}  // namespace

/// The mean of samples along an arc about a point.
Status radialBlur(ImageEngine& engine, int32_t radialLength, Point radialPoint, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (radialLength < 1) return kStatusOk;
    if (isUnset(target)) return kStatusOk;
    const bool weighted = target == ChannelTarget::RGBA;
    const ArcTables table(engine, radialLength);
    const PathSource source(engine, weighted);
    if (source.status()) return source.status();
    return forEachPathTile(engine, [&](const PathTile& tile) {
        const TileArcs arcs(tile, radialPoint, source, radialLength);
        if (table.count() <= RoundedSums::kExactSamples)
            blurTile(engine, tile, arcs, table, TileSums(engine, source, weighted), target);
        else
            blurTile(engine, tile, arcs, table, RoundedSums(engine, source, weighted), target);
    });
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
