#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "core/Bands.h"
#include "core/ImageEngine.h"
#include "core/LookupTables.h"
#include "core/Pixel.h"

/// Curves: what a byte becomes, told once for all 256 of them and then looked up. Most point
/// effects are a curve and nothing else.
namespace krl {

/// What each byte becomes.
using ByteCurve = std::array<uint8_t, 256>;

/// One curve for each colour byte, in the order of the bytes.
struct ColourCurves {
    ByteCurve blue, green, red;
};

/// The curve of `entry(i)`, of which the low byte is kept, for `i` from 0 to 255.
template <class Entry>
ByteCurve byteCurve(Entry&& entry) {
    ByteCurve curve;
    for (int32_t i = 0; i < 256; ++i) curve[size_t(i)] = static_cast<uint8_t>(entry(i));
    return curve;
}

/// Sends the listed channels (by number) of a run of pixels through `curve`.
template <size_t... channel>
void applyCurveTo(Pixel* first, Pixel* last, const ByteCurve& curve) {
    for (Pixel* p = first; p != last; ++p) (((*p)[channel] = curve[(*p)[channel]]), ...);
}

/// The same over the loaded image, in bands.
template <size_t... channel>
Status applyCurveTo(ImageEngine& engine, const ByteCurve& curve) {
    return forEachPixelRun(engine,
                           [&](Pixel* first, Pixel* last) { applyCurveTo<channel...>(first, last, curve); });
}

/// Sends the bytes of `target` through `curve`: the three colour bytes, or alpha alone.
Status applyCurve(ImageEngine& engine, ChannelTarget target, const ByteCurve& curve);

/// Sends each colour byte of a run of pixels through the curve of its channel.
void applyCurves(Pixel* first, Pixel* last, const ColourCurves& curves);

/// The same over the loaded image, in bands.
Status applyCurves(ImageEngine& engine, const ColourCurves& curves);

/// Gives every pixel the colour `colourOf(mean)`, a `Pixel` whose alpha is ignored, for the mean of
/// its three colour bytes. Alpha stays.
template <class ColourOf>
Status recolourByMean(ImageEngine& engine, ColourOf&& colourOf);

/// The dormant wide path of the effects that shift whole channels: adds `step` to every pixel, or
/// takes it away, byte by byte, each byte stopping at 255 or 0.
Status shiftSaturated(ImageEngine& engine, Pixel step, bool subtract);

/// Outputs of `recolourByMean` by the sum of the colour bytes, so that a pixel costs one look-up.
using ColourBySum = std::array<Pixel, 3 * 255 + 1>;
Status recolourBySum(ImageEngine& engine, const ColourBySum& colours);

template <class ColourOf>
Status recolourByMean(ImageEngine& engine, ColourOf&& colourOf) {
    if (Status state = engine.imageStatus()) return state;
    ColourBySum colours;
    for (size_t sum = 0; sum < colours.size(); ++sum) colours[sum] = colourOf(engine.tables().meanOf3[sum]);
    return recolourBySum(engine, colours);
}

}  // namespace krl
