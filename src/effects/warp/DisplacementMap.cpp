#include "effects/warp/DisplacementMap.h"

#include <algorithm>
#include <cmath>

#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/sample/PositionWarp.h"

namespace krl {

namespace {

/// The values of a run of a map's row.
using MapSpan = uint8_t[kSampleBatch];

/// What `option` reads of a pixel by plain arithmetic; the quotients and products are those of the shared
/// tables.
template <MapOption option>
int32_t valueOf(uint32_t word) {
    const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
    if constexpr (option == MapOption::Red) return red;
    if constexpr (option == MapOption::Green) return green;
    if constexpr (option == MapOption::Blue) return blue;
    if constexpr (option == MapOption::Alpha) return byteAt(word, 24) >> 1;
    if constexpr (option == MapOption::Greyscale) return (blue + green + red) / 3;
    if constexpr (option == MapOption::Luminosity)
        return static_cast<int32_t>(double(static_cast<float>(red * 0.299)) +
                                    static_cast<float>(green * 0.587) + static_cast<float>(blue * 0.114));
    if constexpr (option == MapOption::Lightness)
        return (std::max({red, green, blue}) + std::min({red, green, blue}) + 1) / 2;
    return 128;
}

template <MapOption option>
KRL_VECTOR_LEVELS void fillValues(uint8_t* __restrict values, const Pixel* __restrict pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) values[i] = static_cast<uint8_t>(valueOf<option>(wordOf(pixels[i])));
}

/// The same of what `value` makes of a pixel's hue, lightness and saturation.
template <class Value>
void fillValuesOfHls(uint8_t* values, const Pixel* pixels, size_t count, Value&& value) {
    for (size_t i = 0; i < count; ++i) {
        const Pixel p = pixels[i];
        values[i] = static_cast<uint8_t>(value(rgbToHls(p.red, p.green, p.blue)));
    }
}

/// The values of `option` in a run of pixels. `SameAsMapOne` leaves them as they are.
void readValues(MapSpan& run, const Pixel* pixels, size_t count, MapOption option) {
    switch (option) {
        case MapOption::SameAsMapOne:
            return;
        case MapOption::Red:
            return fillValues<MapOption::Red>(run, pixels, count);
        case MapOption::Green:
            return fillValues<MapOption::Green>(run, pixels, count);
        case MapOption::Blue:
            return fillValues<MapOption::Blue>(run, pixels, count);
        case MapOption::Alpha:
            return fillValues<MapOption::Alpha>(run, pixels, count);
        case MapOption::Greyscale:
            return fillValues<MapOption::Greyscale>(run, pixels, count);
        case MapOption::Luminosity:
            return fillValues<MapOption::Luminosity>(run, pixels, count);
        case MapOption::Hue:
            return fillValuesOfHls(run, pixels, count, [](const Hls& hls) {
                return static_cast<int32_t>(std::max(0, hls.hue) / 360.0 * 255);
            });
        case MapOption::Saturation:
            return fillValuesOfHls(run, pixels, count, [](const Hls& hls) {
                return static_cast<int32_t>(hls.saturation / 720.0 * 255);
            });
        case MapOption::Lightness:
            return fillValues<MapOption::Lightness>(run, pixels, count);
        case MapOption::Off:
            return fillValues<MapOption::Off>(run, pixels, count);
    }
}

/// Where pixels at `start`, `start + step` and so on are shifted to by a map's values and alphas: black by
/// half of `reach` at full alpha, white by as much the other way. The quotients are `unitFromByte`.
KRL_VECTOR_LEVELS void shiftPlaces(const uint8_t* __restrict values, const Pixel* __restrict pixels,
                                   double reach, int32_t start, int32_t step, size_t count,
                                   float* __restrict places) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t place = start + step * static_cast<int32_t>(i);
        const float unit = static_cast<float>(values[i]) / 255.0f;
        const float alpha = static_cast<float>(byteAt(wordOf(pixels[i]), 24)) / 255.0f;
        const auto shift = static_cast<float>((0.5 - unit) * reach);
        places[i] = static_cast<float>(place + static_cast<double>(alpha) * shift);
    }
}

/// A map as it shifts along one axis.
class ShiftMap {
public:
    /// Black reads from farther on by half of `reach`.
    ShiftMap(const SecondImage& image, MapOption option, float reach)
        : image_(image), option_(option), reach_(reach) {}

    /// Where the pixels of row `y` from column `x` on, which stand at `start`, `start + step` and so on, are
    /// shifted to. For the same values as another map's, `run` holds those beforehand.
    void shift(MapSpan& run, int32_t y, int32_t x, int32_t start, int32_t step, size_t count,
               float* places) const {
        const Pixel* pixels = image_.row(y) + x;
        readValues(run, pixels, count, option_);
        shiftPlaces(run, pixels, reach_, start, step, count, places);
    }

private:
    const SecondImage& image_;
    MapOption option_;
    float reach_;
};

/// A place brought into a line of `length` pixels by whole lengths, as often as it takes.
float folded(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    if (place >= 0 && place < end) return place;
    const double rest = std::fmod(static_cast<double>(place), length);
    const auto inside = static_cast<float>(rest < 0 ? rest + length : rest);
    return inside >= end ? inside - end : inside;
}

/// The same for `count` places.
void foldInside(float* places, size_t count, int32_t length) {
    for (size_t i = 0; i < count; ++i) places[i] = folded(places[i], length);
}

/// Whether `map` can be read beside every pixel of the image.
bool covers(const ImageEngine& engine, const SecondImage& map) { return map.pixels && engine.hasSizeOf(map); }

}  // namespace

Status displacementMapComposite(ImageEngine& engine, const SecondImage& dMapOne, MapOption colouringOptionOne,
                                const SecondImage& dMapTwo, MapOption colouringOptionTwo, float hDistance,
                                float vDistance, MapEdge edgeOption) {
    if (Status state = engine.imageStatus()) return state;
    if (!covers(engine, dMapOne) || !covers(engine, dMapTwo)) return kStatusRefused;
    const float across = hDistance > 0 ? hDistance : 0.0f, down = vDistance > 0 ? vDistance : 0.0f;
    if (across == 0 && down == 0) return kStatusOk;

    const ShiftMap horizontal(dMapOne, colouringOptionOne, -across),
        vertical(dMapTwo, colouringOptionTwo, down);
    const int32_t width = engine.buffer()->width, height = engine.buffer()->height;
    const auto hold = edgeOption == MapEdge::Wrap ? holdInside : foldInside;
    return warpByPosition(engine, SampleQuality::Bilinear, ChannelTarget::RGBA,
                          [&](int32_t y, int32_t first, PositionSpan& run) {
                              MapSpan values{};
                              horizontal.shift(values, y, first, first, 1, run.count, run.x);
                              hold(run.x, run.count, width);
                              vertical.shift(values, y, first, y, 0, run.count, run.y);
                              hold(run.y, run.count, height);
                          });
}

}  // namespace krl
