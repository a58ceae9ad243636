#pragma once

#include <cmath>
#include <cstdint>

#include "core/Bands.h"
#include "core/ExactFunctions.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Scratch.h"
#include "kernels/path/PixelFields.h"
#include "krlimage/engine.h"

/// What the averages along a path are made of: the pixels to sample, the sums of four channels, and
/// the running weight of colour.
namespace krl {

/// `sum` after `term` has been added to it `times` times, each sum rounded to single precision. Takes
/// no longer for many times than for few.
float addedRepeatedly(float sum, float term, int64_t times);

/// Writes the mean of `count` bytes for each of `number` sums, limited to 0..255 where a sum has wrapped.
void meansOf(const uint32_t* sums, int32_t number, int32_t count, uint8_t* means);

/// The picture as it is sampled: a tightly packed copy, its colours scaled by alpha where they are to
/// be weighed by it.
class PathSource {
public:
    PathSource(const ImageEngine& engine, bool scaled);

    /// Whether the bands that make the copy could start.
    Status status() const { return status_; }
    const Pixel* pixels() const { return pixels_.data(); }
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    /// Offset of a pixel past the last that adds nothing to any sum.
    int32_t nothing() const { return width_ * height_; }

private:
    int32_t width_, height_;
    Scratch<Pixel> pixels_;
    Status status_ = kStatusOk;
};

/// Sums of the four channels over samples, 32-bit integers that wrap, and the weight of colour: alpha
/// on 0..1, added sample by sample in single precision.
class PathSum {
public:
    float weight = 0.0f;

    /// Adds the sums of at most 256 samples.
    void add(uint64_t fields) {
        blue_ += blueField(fields);
        green_ += greenField(fields);
        red_ += redField(fields);
        alpha_ += alphaField(fields);
    }
    /// Adds one pixel `times` times, the weight left as it is.
    void add(Pixel p, int64_t times) {
        const auto factor = static_cast<uint32_t>(times);
        blue_ += factor * p.blue;
        green_ += factor * p.green;
        red_ += factor * p.red;
        alpha_ += factor * p.alpha;
    }

    /// Alpha over the number of samples.
    uint8_t meanAlpha(int32_t count) const { return mean(alpha_, count); }
    /// Every channel over the number of samples.
    Pixel mean(int32_t count) const {
        return {mean(blue_, count), mean(green_, count), mean(red_, count), mean(alpha_, count)};
    }
    /// Colour over the weight, which must not be 0, and alpha over the number of samples.
    Pixel weighted(int32_t count) const {
        return {overWeight(blue_), overWeight(green_), overWeight(red_), meanAlpha(count)};
    }

private:
    static uint8_t mean(uint32_t sum, int32_t count) {
        return static_cast<uint8_t>(static_cast<int32_t>(sum) / count);
    }
    uint8_t overWeight(uint32_t sum) const {
        return static_cast<uint8_t>(truncate(static_cast<int32_t>(sum) / double(weight)));
    }

    uint32_t blue_ = 0, green_ = 0, red_ = 0, alpha_ = 0;
};

/// Where the equal samples end that begin with sample `first` of `count`. `isSame` says whether a later
/// sample is one of them; equal ones must follow one another.
template <class IsSame>
int64_t endOfSpan(int64_t first, int64_t count, const IsSame& isSame) {
    int64_t span = 1;
    while (first + span < count && isSame(first + span)) span *= 2;
    int64_t same = first + span / 2, other = first + span < count ? first + span : count;
    while (other - same > 1) {
        const int64_t middle = same + (other - same) / 2;
        (isSame(middle) ? same : other) = middle;
    }
    return other;
}

/// Where a point is from a pixel. The distance is made of 32-bit squares, which wrap for a point some
/// 46000 pixels away and then have nothing to do with the direction.
struct PointReach {
    int32_t dx, dy;
    double distance;
    bool hasWrapped;

    PointReach(Point point, int32_t x, int32_t y)
        : dx(wrapSubtract(point.x, x)), dy(wrapSubtract(point.y, y)) {
        const int32_t square = sumOfSquares(dx, dy);
        distance = std::sqrt(double(square));
        const auto wide = [](int64_t d) { return static_cast<uint64_t>(d * d); };
        hasWrapped = square < 0 || static_cast<uint64_t>(square) != wide(dx) + wide(dy);
    }
    double angle() const { return exactAngle(dy, dx); }

    static int32_t sumOfSquares(int32_t a, int32_t b) {
        return wrapAdd(wrapMultiply(a, a), wrapMultiply(b, b));
    }
};

/// A real coordinate's column or row among `size`: truncated, and limited to the picture. What is not
/// a number is the first.
inline int32_t placeWithin(double coordinate, int32_t size) {
    const double positive = coordinate > 0.0 ? coordinate : 0.0;
    const double last = size - 1;
    return static_cast<int32_t>(positive < last ? positive : last);
}

/// The pixel that a place falls into, and whether another would be it if the place were wrong by as
/// much as `error`: then, and only then, the exact definition decides.
struct Placement {
    int32_t offset;
    int32_t doubt;  ///< 0 for none

    Placement(double x, double y, int32_t width, int32_t height, double error) {
        const int32_t column = placeWithin(x + error, width), row = placeWithin(y + error, height);
        offset = row * width + column;
        doubt = (column - placeWithin(x - error, width)) | (row - placeWithin(y - error, height));
    }
};

}  // namespace krl
