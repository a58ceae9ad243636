#include <algorithm>
#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/VectorLevels.h"
#include "effects/warp/WarpChoices.h"
#include "effects/warp/WaveFrequency.h"
#include "kernels/sample/PositionWarp.h"
#include "kernels/sample/Trigonometry.h"
#include "krlimage/warp.h"

namespace krl {

namespace {

/// The numbers of circular waves.
struct Ripples {
    double amplitude;
    float radians, phase;
    Point origin;
    bool wide;

    /// Angles of the waves at the distances (`dx[i]`, `dy`) from the centre. The wide path rounds every step
    /// to single precision, the plain one the squares alone.
    KRL_VECTOR_LEVELS void anglesAt(const double* __restrict dx, double dy, double* __restrict angles,
                                    size_t count) const {
        const auto squareY = static_cast<float>(dy * dy);
        if (wide) {
            for (size_t i = 0; i < count; ++i) {
                const auto squareX = static_cast<float>(dx[i] * dx[i]);
                angles[i] = std::sqrt(squareX + squareY) * radians + phase;
            }
        } else {
            for (size_t i = 0; i < count; ++i) {
                const auto sum = static_cast<float>(dx[i] * dx[i] + squareY);
                angles[i] = std::sqrt(static_cast<double>(sum)) * radians + phase;
            }
        }
    }

    /// Where pixels at `start`, `start + step` and so on are shifted to.
    KRL_VECTOR_LEVELS void shiftPlaces(const double* __restrict heights, int32_t start, int32_t step,
                                       size_t count, float* __restrict places) const {
        for (size_t i = 0; i < count; ++i)
            places[i] = static_cast<float>(heights[i] * amplitude + (start + step * static_cast<int32_t>(i)));
    }

    /// Rows at the same distance above and below a centre in the picture share their angles. Of any other
    /// centre every row is a pair of its own.
    bool hasPairs(const ImageBuffer& image) const { return origin.y >= 0 && origin.y < image.height; }
    int32_t rowPairs(const ImageBuffer& image) const {
        return hasPairs(image) ? std::max(origin.y, image.height - 1 - origin.y) + 1 : image.height;
    }

    /// Makes a batch of the row of `pair` above the centre and of the one below, as far as there are.
    void makePair(const ImageBuffer& image, int32_t pair, PositionBatch& batch, int32_t first,
                  const PutRow& put) const {
        const bool paired = hasPairs(image);
        const int32_t above = paired ? origin.y - pair : pair;
        double dx[kBatchPixels], angles[kBatchPixels], sines[kBatchPixels], cosines[kBatchPixels];
        for (size_t i = 0; i < batch.count; ++i)
            dx[i] = wrapSubtract(origin.x, first + static_cast<int32_t>(i));
        anglesAt(dx, wrapSubtract(origin.y, above), angles, batch.count);
        sinesAndCosines(angles, sines, cosines, batch.count);
        shiftPlaces(sines, first, 1, batch.count, batch.x);
        holdInside(batch.x, batch.count, image.width);
        const auto makeRow = [&](int32_t y) {
            shiftPlaces(cosines, y, 0, batch.count, batch.y);
            holdInside(batch.y, batch.count, image.height);
            put(y);
        };
        if (above >= 0) makeRow(above);
        if (paired && pair > 0 && pair < image.height - origin.y) makeRow(origin.y + pair);
    }
};

}  // namespace

/// Moves each pixel by a wave of its distance from `origin`: `angle = distance * frequency + phase`, and the
/// pixel comes from `x + amplitude * sin(angle)`, `y + amplitude * cos(angle)`, held in the picture. An
/// `amplitude` below 0 is 0.
Status circularWaves(ImageEngine& engine, float amplitude, float frequency, float phase, Point origin,
                     SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const Ripples ripples{amplitude < 0 ? 0.0f : amplitude, radiansPerPixel(frequency), phase, origin,
                          engine.useWidePath()};
    return warpByLine(engine, quality, colourOrAlpha, ripples.rowPairs(image),
                      [&](int32_t pair, PositionBatch& batch, int32_t first, const PutRow& put) {
                          ripples.makePair(image, pair, batch, first, put);
                      });
}

void describeCircularWaves(Catalogue& catalogue) {
    catalogue.add("krlImageCircularWaves", circularWaves)
        .summary("Makes ripples around a point, as where a stone fell into a pond.")
        .words("ripple, pond, water, rings, distort")
        .real("amplitude", {.from = 0, .to = 100, .example = 8, .least = 0, .neutral = 0, .pixels = true},
              "how far a place is moved, in pixels")
        .real("frequency", {.from = 0, .to = 45, .example = 6}, kFrequencyMeaning)
        .real("phase", {.from = -6.3, .to = 6.3, .example = 0},
              "where the ripple begins at the point, in radians; step it to make rings run")
        .point("origin", {.x = 0.5, .y = 0.5}, "the middle of the rings")
        .symbol("quality", warpQualities(), refused("Circular Waves invalid quality input (Image)"),
                kQualityMeaning)
        .showing("bilinear")
        .thenCompare()
        .symbol("colourOrAlpha", anyChannels(), refused("Circular Waves invalid colourOrAlpha input (Image)"),
                kChannelsMeaning)
        .inputFailure("Circular Waves input failure (Image)")
        .failed("Failed Circular Waves function (Image)");
}

}  // namespace krl
