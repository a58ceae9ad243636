#pragma once

#include <cstdint>
#include <functional>

#include "core/Bands.h"
#include "core/Numbers.h"
#include "kernels/curve/CurveLookup.h"
#include "krlimage/engine.h"
#include "krlimage/pixel.h"

/// Curves: what each of the 256 bytes becomes, computed once and then looked up. Most point
/// effects are a curve and nothing else.
namespace krl {

/// One curve for each colour byte, in the order of the bytes.
struct ColourCurves {
    ByteCurve blue, green, red;

    ChannelCurves byChannel() const { return {&blue, &green, &red, nullptr}; }
};

/// The curve of `entry(i)`, of which the low byte is kept, for `i` from 0 to 255.
template <class Entry>
ByteCurve byteCurve(Entry&& entry) {
    ByteCurve curve;
    for (int32_t i = 0; i < 256; ++i) curve[size_t(i)] = static_cast<uint8_t>(entry(i));
    return curve;
}

/// Sends the listed channels (by number) of a span of pixels through `curve`.
template <size_t... channel>
void applyCurveTo(Pixel* first, Pixel* last, const ByteCurve& curve) {
    Pixel* rest = lookUpWide(first, last, {{curve, ((1u << channel) | ...)}});
    for (Pixel* p = rest; p != last; ++p) (((*p)[channel] = curve[(*p)[channel]]), ...);
}

/// Sends the loaded image through `curves`, in bands: by `lookUp`, or faster.
Status runCurves(const ImageEngine& engine, const ChannelCurves& curves, const SpanWork& lookUp);

/// The same over the loaded image, in bands.
template <size_t... channel>
Status applyCurveTo(ImageEngine& engine, const ByteCurve& curve) {
    ChannelCurves curves{};
    ((curves[channel] = &curve), ...);
    const auto lookUp = [&](Pixel* first, Pixel* last) { applyCurveTo<channel...>(first, last, curve); };
    return runCurves(engine, curves, std::ref(lookUp));
}

/// Sends the bytes of `target` through `curve`: the three colour bytes, or alpha alone.
Status applyCurve(ImageEngine& engine, ChannelTarget target, const ByteCurve& curve);

/// Sends each colour byte of a span of pixels through the curve of its channel.
void applyCurves(Pixel* first, Pixel* last, const ColourCurves& curves);

/// The same over the loaded image, in bands.
Status applyCurves(ImageEngine& engine, const ColourCurves& curves);

/// The dormant wide path of the effects that shift whole channels: adds `step` to every pixel, or
/// takes it away, byte by byte, each byte stopping at 255 or 0.
Status shiftSaturated(ImageEngine& engine, Pixel step, bool subtract);

}  // namespace krl
