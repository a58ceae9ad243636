#include "effects/hue/HlsChange.h"

#include <algorithm>
#include <iterator>

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

KRL_VECTOR_LEVELS void apply(const HlsChange& change, HlsLanes& hls) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        hls.hue[i] = change.hues[hls.hue[i] + 1];
        hls.lightness[i] = change.lightnesses[hls.lightness[i]];
    }
}

/// The same for lanes.
void recolour(ColourLanes& colours, const HlsChange& change) {
    HlsLanes hls;
    toHls(colours, hls);
    apply(change, hls);
    fromHls(hls, colours);
}

/// Moves each lane from what it was as far toward what it became as `gain` says.
template <class Gain>
KRL_VECTOR_LEVELS void blendLanes(int32_t (&became)[kBatchPixels], const int32_t (&was)[kBatchPixels],
                                  Gain gain) {
    for (size_t i = 0; i < kBatchPixels; ++i) became[i] = gain(was[i], became[i] - was[i]);
}

}  // namespace

Status recolourByHls(ImageEngine& engine, const HlsChange& change) {
    if (!suitsLanes(change)) return recolourSingly(engine, change);
    return forEachLaneBatch(engine, [&](ColourLanes& colours) { recolour(colours, change); });
}

Status recolourByHls(ImageEngine& engine, const HlsChange& change, int32_t density) {
    const auto blend = [&](auto gain) {
        return forEachLaneBatch(engine, [&, gain](ColourLanes& colours) {
            const ColourLanes before = colours;
            recolour(colours, change);
            blendLanes(colours.red, before.red, gain);
            blendLanes(colours.green, before.green, gain);
            blendLanes(colours.blue, before.blue, gain);
        });
    };
    const auto mix = static_cast<float>(density / 100.0);
    return givesBytes(change) ? withGain(mix, blend) : blend(RealGain{mix});
}

}  // namespace krl
