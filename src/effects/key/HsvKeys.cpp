#include "effects/key/HsvKeys.h"

#include <array>
#include <cmath>

#include "core/LookupTables.h"
#include "effects/key/ExtremesTable.h"
#include "effects/key/HueSpan.h"
#include "effects/key/KeyColour.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

Hsv hsvOf(const LookupTables& tables, Colour colour) {
    const float* unit = tables.unitFromByte;
    return rgbToHsv(unit[colour.red()], unit[colour.green()], unit[colour.blue()]);
}

/// How a distance from the picked component, 255 at the range's end, becomes a matte: 0 up to
/// `black`, 255 from `white` on.
class Softness {
public:
    Softness(int32_t black, int32_t white)
        : black_(clampByte(black)), slope_(static_cast<float>(256.0 / (clampByte(white) - black_ + 1))) {}

    uint8_t matte(double distance) const {
        return clampByte(truncate(std::round((distance - black_) * slope_)));
    }

private:
    int32_t black_;
    float slope_;
};

/// The matte of a saturation or value by its distance from the picked one.
class UnitRamp {
public:
    UnitRamp(float pick, float dynamicRange, int32_t black, int32_t white)
        : softness_(black, white), pick_(pick), range_(clampTo(dynamicRange, 0.0f, 1.0f)) {
        const float below = pick_ - range_, above = pick_ + range_;
        low_ = below < 0.0f ? 0.0f : below;
        high_ = above > 1.0f ? 1.0f : above;
    }

    uint8_t matte(float x) const {
        const float distance = low_ <= x && x <= high_ ? std::fabs((x - pick_) / range_) : 1.0f;
        return softness_.matte(clampByte(truncate(distance * 255.0)));
    }

private:
    Softness softness_;
    float pick_, range_, low_ = 0, high_ = 0;
};

/// The mattes of all hues, turned so that the picked one stands at 180 degrees. What is out of range
/// has the same matte as what lies outside the circle, and so have greys.
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
    void mattesOf(const float* hues, ptrdiff_t count, uint8_t* mattes) const {
        const float shift = shift_;
        for (ptrdiff_t i = 0; i < count; ++i) {
            const int32_t place = static_cast<int32_t>(hues[i] + shift) + kOrigin;
            mattes[i] = mattes_[size_t(place)];
        }
    }

private:
    /// Where place 0 stands in the table, which has room for every sum of a hue and a shift.
    static constexpr int32_t kOrigin = 200;

    float shift_;
    std::array<uint8_t, 1200> mattes_;
};

}  // namespace

Status hueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white, bool keep,
              bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const HueRamp ramp(hsvOf(engine.tables(), pColor).hue, dynamicRange, black, white);
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, ptrdiff_t count, uint8_t* mattes) {
        std::array<float, kMatteBatch> hues;
        huesOf(pixels, count, ramp.greyHue(), hues.data());
        ramp.mattesOf(hues.data(), count, mattes);
    });
}

Status saturationKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                     bool keep, bool invert) {
    if (engine.imageStatus()) return kStatusRefused;
    const UnitRamp ramp(hsvOf(engine.tables(), pColor).saturation, dynamicRange, black, white);
    const ExtremesTable table(engine.tables(),
                              [&](const Hsv& colour) { return ramp.matte(colour.saturation); });
    Pixel* const first = engine.buffer()->row(0);
    keySpans(first, first + engine.buffer()->bytes() / sizeof(Pixel), keep, invert,
             [&](const Pixel* pixels, ptrdiff_t count, uint8_t* mattes) {
                 table.mattesOf(pixels, count, mattes);
             });
    return kStatusOk;
}

Status valueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                bool keep, bool invert) {
    if (Status state = engine.imageStatus()) return state;
    const LookupTables& tables = engine.tables();
    const UnitRamp ramp(hsvOf(tables, pColor).value, dynamicRange, black, white);
    std::array<uint8_t, 256> mattes;
    for (size_t value = 0; value < mattes.size(); ++value)
        mattes[value] = ramp.matte(tables.unitFromByte[value]);
    return keyEachPixel(engine, keep, invert, [&](const Pixel& p) { return mattes[largestChannel(p)]; });
}

}  // namespace krl
