#include "effects/hue/HueEffects.h"

#include <algorithm>
#include <new>

#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/HlsLanes.h"
#include "kernels/colour/HsvLanes.h"
#include "kernels/curve/EdgeGain.h"

namespace krl {

namespace {

/// What becomes of every hue and of every lightness.
struct HlsChange {
    int32_t hues[362];  ///< by hue + 1, as the hue of a grey is -1
    int32_t lightnesses[361];

    int32_t& hue(int32_t from) { return hues[from + 1]; }
    int32_t hue(int32_t from) const { return hues[from + 1]; }

    /// Whether every hue is one that a block can take.
    bool suitsBlocks() const {
        return std::all_of(std::begin(hues), std::end(hues),
                           [](int32_t hue) { return -kWidestHue <= hue && hue <= kWidestHue; });
    }
    /// Whether all channels come out as bytes; those of hues far below 0 lie beyond.
    bool givesBytes() const {
        return std::all_of(std::begin(hues), std::end(hues), [](int32_t hue) { return hue >= -1; });
    }
};

HlsChange unchanged() {
    HlsChange change;
    for (int32_t i = -1; i <= 360; ++i) change.hue(i) = i;
    for (int32_t i = 0; i <= 360; ++i) change.lightnesses[i] = i;
    return change;
}

template <class NewHue>
HlsChange hueChange(NewHue&& newHue) {
    HlsChange change = unchanged();
    for (int32_t hue = -1; hue <= 360; ++hue) change.hue(hue) = newHue(hue);
    return change;
}

KRL_VECTOR_LEVELS void apply(const HlsChange& change, HlsLanes& hls) {
    for (size_t i = 0; i < kBlockPixels; ++i) {
        hls.hue[i] = change.hues[hls.hue[i] + 1];
        hls.lightness[i] = change.lightnesses[hls.lightness[i]];
    }
}

void recolour(ColourLanes& colours, const HlsChange& change) {
    HlsLanes hls;
    toHls(colours, hls);
    apply(change, hls);
    fromHls(hls, colours);
}

/// Takes every pixel through the change, one by one: for hues of any size.
Status recolourSingly(ImageEngine& engine, const HlsChange& change) {
    return forEachPixel(engine, [&](Pixel& p) {
        const Hls hls = rgbToHls(p.red, p.green, p.blue);
        Rgb rgb{p.red, p.green, p.blue};
        hlsToRgb({change.hue(hls.hue), change.lightnesses[hls.lightness], hls.saturation}, rgb);
        p = {static_cast<uint8_t>(rgb.blue), static_cast<uint8_t>(rgb.green), static_cast<uint8_t>(rgb.red),
             p.alpha};
    });
}

Status recolourByHls(ImageEngine& engine, const HlsChange& change) {
    if (!change.suitsBlocks()) return recolourSingly(engine, change);
    return forEachLaneBatch(engine, [&](ColourLanes& colours) { recolour(colours, change); });
}

/// Moves each lane from what it was as far toward what it became as `gain` says.
template <class Gain>
KRL_VECTOR_LEVELS void blendLanes(int32_t (&became)[kBlockPixels], const int32_t (&was)[kBlockPixels],
                                  Gain gain) {
    for (size_t i = 0; i < kBlockPixels; ++i) became[i] = gain(was[i], became[i] - was[i]);
}

/// The same, mixed with the picture by `density` percent.
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
    return change.givesBytes() ? withGain(mix, blend) : blend(RealGain{mix});
}

/// A hue argument within one turn; the remainder of a negative one is negative.
int32_t withinTurn(int32_t hue) { return hue > 360 || hue < 0 ? hue % 360 : hue; }

/// A turned hue brought back by one turn at most.
int32_t turned(int32_t hue, int32_t by) {
    hue = wrapAdd(hue, by);
    if (hue >= 360) hue -= 360;
    if (hue < 0) hue += 360;
    return hue;
}

}  // namespace

Status hueColourise(ImageEngine& engine, int32_t hueValue, int32_t density) {
    return recolourByHls(engine, hueChange([=](int32_t) { return withinTurn(hueValue); }), density);
}

Status hueShift(ImageEngine& engine, int32_t hueValue, int32_t density) {
    return recolourByHls(engine, hueChange([=](int32_t hue) { return turned(hue, withinTurn(hueValue)); }),
                         density);
}

Status lightnessHLS(ImageEngine& engine, float lightness) {
    HlsChange change = unchanged();
    for (int32_t& level : change.lightnesses) level = clampTo(truncate(level * double(lightness)), 0, 360);
    return recolourByHls(engine, change);
}

Status lightnessHSV(ImageEngine& engine, float lightness) {
    const auto lift = static_cast<float>(lightness - 1.0);
    const double fade = lift > 0 ? 1.0 - lift : 1.0;
    return recolourByHsv(engine, [=](float& saturation, float& value) {
        saturation = clampTo(static_cast<float>(fade * saturation), 0.0f, 1.0f);
        value = clampTo(value + lift, 0.0f, 1.0f);
    });
}

namespace {

/// The hue at the lower bound of its band. Beyond 360 bands no whole hue lies between two bounds, and
/// the walk has nothing to move.
int32_t bandedHue(int32_t hue, int32_t level) {
    const int32_t bands = level > 360 ? 0 : level;
    const auto step = static_cast<float>(360.0 / level);
    const auto bound = [=](int32_t j) { return j == bands ? 360 : truncate(j * double(step)); };
    for (int32_t j = 0; j < bands; ++j) {
        const int32_t low = bound(j), high = bound(j + 1);
        if (low < hue && hue < high) hue = low == 0 ? 0 : high == 360 ? 360 : low;
    }
    return hue;
}

}  // namespace

Status posteriseHue(ImageEngine& engine, int32_t level, int32_t rotation) {
    if (Status state = engine.imageStatus()) return state;
    if (level < 0) throw std::bad_alloc();  // as a count of bounds, more than any memory holds
    return recolourByHls(engine,
                         hueChange([=](int32_t hue) { return turned(bandedHue(hue, level), rotation); }));
}

}  // namespace krl
