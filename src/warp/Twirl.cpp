#include "warp/Twirl.h"

#include <algorithm>
#include <cmath>

#include "warp/PositionWarp.h"
#include "warp/Trigonometry.h"

namespace krl {

namespace {

/// The disc that is turned.
class TwirlDisc {
public:
    TwirlDisc(const ImageBuffer& image, int32_t twirl)
        : centreX_(image.width * 0.5),
          centreY_(image.height * 0.5),
          radiansPerPixel_(twirl / (image.width * 0.5 * 10)),
          minHalf_(std::min(image.width, image.height) * 0.5),
          maxHalf_(std::max(image.width, image.height) * 0.5),
          right_(static_cast<float>(image.width)),
          bottom_(static_cast<float>(image.height)) {}

    void positions(int32_t y, int32_t first, PositionRun& run) const {
        double dx[kRunPixels], sizes[kRunPixels], missing[kRunPixels];
        double turns[kRunPixels], sines[kRunPixels], cosines[kRunPixels];
        const double dy = centreY_ - y;
        for (size_t i = 0; i < run.count; ++i) dx[i] = centreX_ - (first + static_cast<int32_t>(i));
        angleSizes(dx, dy, sizes, run.count);
        for (size_t i = 0; i < run.count; ++i) {
            missing[i] = limitAt(sizes[i]) - std::sqrt(dx[i] * dx[i] + dy * dy);
            turns[i] = missing[i] * radiansPerPixel_;
        }
        if (*std::max_element(missing, missing + run.count) <= 0) {
            std::fill_n(run.x, run.count, kStays);
            return;
        }
        sinesAndCosines(turns, sines, cosines, run.count);
        for (size_t i = 0; i < run.count; ++i) {
            // Distance and direction after the turn are what turning (dx, dy) gives.
            const auto x = static_cast<float>(centreX_ - (dx[i] * cosines[i] - dy * sines[i]));
            const auto place = static_cast<float>(centreY_ - (dy * cosines[i] + dx[i] * sines[i]));
            run.x[i] = missing[i] <= 0 ? kStays : held(x, right_);
            run.y[i] = held(place, bottom_);
        }
    }

private:
    /// The disc's radius in a direction. The angle is taken from radians to radians as if it were in
    /// degrees; that is what gives the disc its size.
    double limitAt(double angleSize) const {
        const auto v = static_cast<float>(angleSize * kRadiansPerDegree);
        const double w = (v - 90.0) * 2.8333333333333335;
        return ((255 - w) * maxHalf_ + w * minHalf_) * 0.00390625;
    }

    /// Unlike in the waves, a place exactly at the end stays.
    static float held(float place, float end) { return place < 0 ? 0 : place > end ? end - 1 : place; }

    double centreX_, centreY_, radiansPerPixel_, minHalf_, maxHalf_;
    float right_, bottom_;
};

}  // namespace

Status twirl(ImageEngine& engine, int32_t twirl, SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const TwirlDisc disc(*engine.buffer(), twirl);
    return warpByPosition(engine, quality, colourOrAlpha,
                          [&](int32_t y, int32_t first, PositionRun& run) { disc.positions(y, first, run); });
}

}  // namespace krl
