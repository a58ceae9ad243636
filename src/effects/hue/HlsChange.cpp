#include "effects/hue/HlsChange.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "core/Gather.h"
#include "core/VectorLevels.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/HlsLanes.h"
#include "kernels/curve/EdgeGain.h"

namespace krl {

HlsChange unchangedHls() {
    HlsChange change;
    for (int32_t i = -1; i <= 360; ++i) change.hue(i) = i;
    for (int32_t i = 0; i <= 360; ++i) change.lightnesses[i] = i;
    return change;
}

int32_t turnedHue(int32_t hue, int32_t by) {
    hue = wrapAdd(hue, by);
    if (hue >= 360) hue -= 360;
    if (hue < 0) hue += 360;
    return hue;
}

namespace {

/// Whether `fromHls` takes every new hue.
bool suitsLanes(const HlsChange& change) {
    return std::all_of(std::begin(change.hues), std::end(change.hues),
                       [](int32_t hue) { return -kWidestHue <= hue && hue <= kWidestHue; });
}

/// Whether all channels come out as bytes; those of hues far below 0 are beyond.
bool givesBytes(const HlsChange& change) {
    return std::all_of(std::begin(change.hues), std::end(change.hues), [](int32_t hue) { return hue >= -1; });
}

/// The equation, pixel by pixel: takes hues of any size.
Status recolourSingly(ImageEngine& engine, const HlsChange& change) {
    return forEachPixel(engine, [&](Pixel& p) {
        const Hls hls = rgbToHls(p.red, p.green, p.blue);
        Rgb rgb{p.red, p.green, p.blue};
        hlsToRgb({change.hue(hls.hue), change.lightnesses[hls.lightness], hls.saturation}, rgb);
        p = {static_cast<uint8_t>(rgb.blue), static_cast<uint8_t>(rgb.green), static_cast<uint8_t>(rgb.red),
             p.alpha};
    });
}

/// Replaces every lane by what `changes` says of it.
void change(const int32_t* changes, int32_t (&lanes)[kBatchPixels]) {
    int32_t changed[kBatchPixels];
    gatherWords(changes, lanes, kBatchPixels, changed);
    std::memcpy(lanes, changed, sizeof lanes);
}

/// The same for lanes.
class LaneRecolouring {
public:
    explicit LaneRecolouring(const HlsChange& change)
        : change_(change),
          keepsLightness_(std::ranges::equal(change.lightnesses, unchangedHls().lightnesses)) {}

    void operator()(ColourLanes& colours) const {
        HlsLanes hls;
        toHls(colours, hls);
        change(change_.hues + 1, hls.hue);
        if (!keepsLightness_) change(change_.lightnesses, hls.lightness);
        fromHls(hls, colours);
    }

private:
    const HlsChange& change_;
    bool keepsLightness_;
};

/// Moves each lane from what it was as far toward what it became as `gain` says.
template <class Gain>
KRL_VECTOR_LEVELS void blendLanes(int32_t (&became)[kBatchPixels], const int32_t (&was)[kBatchPixels],
                                  Gain gain) {
    for (size_t i = 0; i < kBatchPixels; ++i) became[i] = gain(was[i], became[i] - was[i]);
}

}  // namespace

Status recolourByHls(ImageEngine& engine, const HlsChange& change) {
    if (!suitsLanes(change)) return recolourSingly(engine, change);
    return forEachLaneBatch(engine, LaneRecolouring(change));
}

Status recolourByHls(ImageEngine& engine, const HlsChange& change, int32_t density) {
    if (density == 100 && givesBytes(change)) return recolourByHls(engine, change);
    const LaneRecolouring recolour(change);
    const auto blend = [&](auto gain) {
        return forEachLaneBatch(engine, [&, gain](ColourLanes& colours) {
            const ColourLanes before = colours;
            recolour(colours);
            blendLanes(colours.red, before.red, gain);
            blendLanes(colours.green, before.green, gain);
            blendLanes(colours.blue, before.blue, gain);
        });
    };
    const auto mix = static_cast<float>(density / 100.0);
    return givesBytes(change) ? withGain(mix, blend) : blend(RealGain{mix});
}

}  // namespace krl
