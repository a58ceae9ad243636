#include <array>
#include <cmath>

#include "effects/key/ComponentKey.h"
#include "effects/key/HueSpan.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The mattes of all hues, turned so that the picked one is at 180 degrees. What is out of range has
/// the same matte as what is outside the circle, and so have greys.
class HueRamp {
public:
    HueRamp(float pick, float dynamicRange, int32_t black, int32_t white) : shift_(180.0f - pick) {
        const Softness softness(black, white);
        const auto range = static_cast<float>(clampTo(dynamicRange, 0.0f, 1.0f) * 360.0);
        const float low = 180.0f - range, high = 180.0f + range;
        mattes_.fill(softness.matte(255.0));
        for (int32_t i = 0; i < 360; ++i)
            if (low <= float(i) && float(i) <= high)
                mattes_[size_t(i) + kOrigin] = softness.matte(std::abs(i - 180) / double(range) * 255.0);
    }

    /// A hue for greys, far outside.
    float greyHue() const { return 900.0f - shift_; }

    /// Writes the mattes of `count` hues.
    void mattesOf(const float* hues, size_t count, uint8_t* mattes) const {
        const float shift = shift_;
        for (size_t i = 0; i < count; ++i) {
            const int32_t place = static_cast<int32_t>(hues[i] + shift) + kOrigin;
            mattes[i] = mattes_[size_t(place)];
        }
    }

private:
    /// Index of place 0 in the table, which has room for every sum of a hue and a shift.
    static constexpr int32_t kOrigin = 200;

    float shift_;
    std::array<uint8_t, 1200> mattes_;
};

}  // namespace

/// Keys on the distance of a pixel's hue from that of `pColor`, without wrapping around the circle:
/// `|hue - pick| / (dynamicRange * 360)` is 0 on the key and 1 off it. Greys are off the key.
Status hueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white, bool keep,
              bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const HueRamp ramp(hsvOf(engine.tables(), pColor).hue, dynamicRange, black, white);
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, size_t count, uint8_t* mattes) {
        std::array<float, kBatchPixels> hues;
        huesOf(pixels, count, ramp.greyHue(), hues.data());
        ramp.mattesOf(hues.data(), count, mattes);
    });
}

void describeHueKey(Catalogue& catalogue) {
    describeComponentKey(catalogue.add("krlImageHueKey", hueKey),
                         {.summary = "Keys on one hue; greys are never on the key.",
                          .searchWords = "chroma key, green screen, greenscreen, select colour, matte",
                          .pickMeaning = "colour whose hue is keyed",
                          .rangeMeaning = "reach to either side, as a share of the circle",
                          .rangeExample = 0.2,
                          .badKeepRemove = "Hue Key invalid input keep_remove option (Image)",
                          .badInvert = "Hue Key invalid input invert option (Image)",
                          .inputFailure = "Hue Key input failure (Image)",
                          .failed = "Failed Hue Key function (Image)"});
}

}  // namespace krl
