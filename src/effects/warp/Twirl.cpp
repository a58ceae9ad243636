#include <algorithm>
#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/VectorLevels.h"
#include "effects/warp/WarpChoices.h"
#include "kernels/sample/PositionWarp.h"
#include "kernels/sample/Trigonometry.h"
#include "krlimage/warp.h"

namespace krl {

namespace {

/// The disc that is turned.
class TwirlDisc {
public:
    TwirlDisc(const ImageBuffer& image, int32_t twirl)
        : height_(image.height),
          centreX_(image.width * 0.5),
          centreY_(image.height * 0.5),
          radiansPerPixel_(twirl / (image.width * 0.5 * 10)),
          minHalf_(std::min(image.width, image.height) * 0.5),
          maxHalf_(std::max(image.width, image.height) * 0.5),
          right_(static_cast<float>(image.width)),
          bottom_(static_cast<float>(image.height)) {}

    /// Rows at the same distance above and below the middle are turned by the same angles.
    int32_t rowPairs() const { return height_ / 2 + 1; }

    /// Makes a batch of row `pair` and of its counterpart below the middle; row 0 has none.
    void makePair(int32_t pair, PositionBatch& batch, int32_t first, const PutRow& put) const {
        double dx[kBatchPixels], sizes[kBatchPixels], turns[kBatchPixels], sines[kBatchPixels],
            cosines[kBatchPixels];
        const double dy = centreY_ - pair;
        for (size_t i = 0; i < batch.count; ++i) dx[i] = centreX_ - (first + static_cast<int32_t>(i));
        angleSizes(dx, dy, sizes, batch.count);
        turnsOf(dx, dy, sizes, turns, batch.count);
        if (std::all_of(turns, turns + batch.count, [](double angle) { return angle == 0; })) return;
        sinesAndCosines(turns, sines, cosines, batch.count);
        const auto makeRow = [&](int32_t y) {
            turn(dx, centreY_ - y, sines, cosines, batch);
            put(y);
        };
        if (pair < height_) makeRow(pair);
        if (pair > 0 && height_ - pair > pair) makeRow(height_ - pair);
    }

private:
    /// How far to turn each of `count` pixels; not at all beyond the disc.
    ///
    /// The disc's radius depends a little on the direction. The angle is taken from radians to radians as if
    /// it were in degrees; that is what gives the disc its size.
    KRL_VECTOR_LEVELS void turnsOf(const double* __restrict dx, double dy,
                                   const double* __restrict angleSizes, double* __restrict turns,
                                   size_t count) const {
        for (size_t i = 0; i < count; ++i) {
            const auto v = static_cast<float>(angleSizes[i] * kRadiansPerDegree);
            const double w = (v - 90.0) * 2.8333333333333335;
            const double limit = ((255 - w) * maxHalf_ + w * minHalf_) * 0.00390625;
            const double missing = limit - std::sqrt(dx[i] * dx[i] + dy * dy);
            turns[i] = (missing > 0 ? missing : 0) * radiansPerPixel_;
        }
    }

    /// Distance and direction after the turn are what turning (dx, dy) gives. A pixel that is not turned
    /// comes from its own place.
    KRL_VECTOR_LEVELS void turn(const double* __restrict dx, double dy, const double* __restrict sines,
                                const double* __restrict cosines, PositionBatch& batch) const {
        for (size_t i = 0; i < batch.count; ++i) {
            batch.x[i] = held(static_cast<float>(centreX_ - (dx[i] * cosines[i] - dy * sines[i])), right_);
            batch.y[i] = held(static_cast<float>(centreY_ - (dy * cosines[i] + dx[i] * sines[i])), bottom_);
        }
    }

    /// Unlike in the waves, a place exactly at the end stays.
    static float held(float place, float end) { return place < 0 ? 0 : place > end ? end - 1 : place; }

    int32_t height_;
    double centreX_, centreY_, radiansPerPixel_, minHalf_, maxHalf_;
    float right_, bottom_;
};

}  // namespace

/// Turns each pixel around the middle by `twirl` tenths of a radian for every half width that it is inside of
/// a disc around the middle.
Status twirl(ImageEngine& engine, int32_t twirl, SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const TwirlDisc disc(*engine.buffer(), twirl);
    return warpByLine(engine, quality, colourOrAlpha, disc.rowPairs(),
                      [&](int32_t pair, PositionBatch& batch, int32_t first, const PutRow& put) {
                          disc.makePair(pair, batch, first, put);
                      });
}

void describeTwirl(Catalogue& catalogue) {
    catalogue.add("krlImageTwirl", twirl)
        .summary("Turns the picture around its middle, the more the nearer to it.")
        .words("swirl, spiral, whirl, vortex, distort")
        .integer("twirl", {.from = -200, .to = 200, .example = 30, .neutral = 0},
                 "strength: tenths of a radian over half the picture's width; its sign is the direction")
        .symbol("quality", warpQualities(), refused("Twirl invalid quality input (Image)"), kQualityMeaning)
        .showing("bilinear")
        .thenCompare()
        .symbol("colourOrAlpha", anyChannels(), refused("Twirl invalid colourOrAlpha input (Image)"),
                kChannelsMeaning)
        .inputFailure("Twirl input failure (Image)")
        .failed("Failed Twirl function (Image)");
}

}  // namespace krl
