#include <algorithm>
#include <cmath>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/Grey.h"
#include "kernels/colour/HueLane.h"
#include "kernels/sample/PositionWarp.h"
#include "krlimage/warp.h"

namespace krl {

namespace {

/// The values of a batch of a map's row.
using MapBatch = uint8_t[kBatchPixels];

/// What `option` reads of a pixel by plain arithmetic.
template <MapOption option>
int32_t valueOf(uint32_t word) {
    const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
    if constexpr (option == MapOption::Red) return red;
    if constexpr (option == MapOption::Green) return green;
    if constexpr (option == MapOption::Blue) return blue;
    if constexpr (option == MapOption::Alpha) return byteAt(word, 24) >> 1;
    if constexpr (option == MapOption::Greyscale)
        return static_cast<int32_t>(thirdOf(static_cast<uint32_t>(blue + green + red)));
    if constexpr (option == MapOption::Luminosity) return static_cast<int32_t>(lumaOf(red, green, blue));
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

/// The values of `option` in a batch of pixels. `SameAsMapOne` leaves them as they are.
void readValues(MapBatch& values, const Pixel* pixels, size_t count, MapOption option) {
    switch (option) {
        case MapOption::SameAsMapOne:
            return;
        case MapOption::Red:
            return fillValues<MapOption::Red>(values, pixels, count);
        case MapOption::Green:
            return fillValues<MapOption::Green>(values, pixels, count);
        case MapOption::Blue:
            return fillValues<MapOption::Blue>(values, pixels, count);
        case MapOption::Alpha:
            return fillValues<MapOption::Alpha>(values, pixels, count);
        case MapOption::Greyscale:
            return fillValues<MapOption::Greyscale>(values, pixels, count);
        case MapOption::Luminosity:
            return fillValues<MapOption::Luminosity>(values, pixels, count);
        case MapOption::Hue:
            return fillValuesOfHls(values, pixels, count, [](const Hls& hls) {
                return static_cast<int32_t>(std::max(0, hls.hue) / 360.0 * 255);
            });
        case MapOption::Saturation:
            return fillValuesOfHls(values, pixels, count, [](const Hls& hls) {
                return static_cast<int32_t>(hls.saturation / 720.0 * 255);
            });
        case MapOption::Lightness:
            return fillValues<MapOption::Lightness>(values, pixels, count);
        case MapOption::Off:
            return fillValues<MapOption::Off>(values, pixels, count);
    }
}

/// Where pixels at `start`, `start + step` and so on are shifted to by a map's values and alphas: black by
/// half of `reach` at full alpha, white by as much the other way. The quotients are `unitFromByte`.
KRL_VECTOR_LEVELS void shiftPlaces(const uint8_t* __restrict values, const Pixel* __restrict pixels,
                                   double reach, int32_t start, int32_t step, size_t count,
                                   float* __restrict places) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t place = start + step * static_cast<int32_t>(i);
        const float unit = unitFromLevel(values[i]), alpha = unitFromLevel(byteAt(wordOf(pixels[i]), 24));
        const auto shift = static_cast<float>((0.5 - unit) * reach);
        places[i] = static_cast<float>(place + static_cast<double>(alpha) * shift);
    }
}

/// A map as it shifts along one axis.
class ShiftMap {
public:
    /// Black reads from farther on by half of `reach`.
    ShiftMap(const DisplacementMap& map, float reach) : map_(map), reach_(reach) {}

    /// Where the pixels of row `y` from column `x` on, which are at `start`, `start + step` and so on, are
    /// shifted to. For `SameAsMapOne`, `values` holds those of the first map beforehand.
    void shift(MapBatch& values, int32_t y, int32_t x, int32_t start, int32_t step, size_t count,
               float* places) const {
        const Pixel* pixels = map_.image.row(y) + x;
        readValues(values, pixels, count, map_.colouringOption);
        shiftPlaces(values, pixels, reach_, start, step, count, places);
    }

private:
    const DisplacementMap& map_;
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

std::vector<SymbolChoice> mapOptions() {
    return {{"red", MapOption::Red},
            {"green", MapOption::Green},
            {"blue", MapOption::Blue},
            {"alpha", MapOption::Alpha},
            {"greyscale", MapOption::Greyscale},
            {"luminosity", MapOption::Luminosity},
            {"hue", MapOption::Hue},
            {"saturation", MapOption::Saturation},
            {"lightness", MapOption::Lightness},
            {"off", MapOption::Off}};
}

}  // namespace

/// Moves each pixel by what two maps say: it comes from `x - alpha1 * (0.5 - value1) * hDistance`,
/// `y + alpha2 * (0.5 - value2) * vDistance`, with alphas and values from 0 to 1. Distances below 0 are 0.
Status displacementMapComposite(ImageEngine& engine, const DisplacementMap& mapOne,
                                const DisplacementMap& mapTwo, float hDistance, float vDistance,
                                MapEdge edgeOption) {
    if (Status state = engine.imageStatus()) return state;
    if (!covers(engine, mapOne.image) || !covers(engine, mapTwo.image)) return kStatusRefused;
    const float across = hDistance > 0 ? hDistance : 0.0f, down = vDistance > 0 ? vDistance : 0.0f;
    if (across == 0 && down == 0) return kStatusOk;

    const ShiftMap horizontal(mapOne, -across), vertical(mapTwo, down);
    const int32_t width = engine.buffer()->width, height = engine.buffer()->height;
    const auto hold = edgeOption == MapEdge::Wrap ? holdInside : foldInside;
    return warpByPosition(engine, SampleQuality::Bilinear, ChannelTarget::RGBA,
                          [&](int32_t y, int32_t first, PositionBatch& batch) {
                              MapBatch values{};
                              horizontal.shift(values, y, first, first, 1, batch.count, batch.x);
                              hold(batch.x, batch.count, width);
                              vertical.shift(values, y, first, y, 0, batch.count, batch.y);
                              hold(batch.y, batch.count, height);
                          });
}

void describeDisplacementMapComposite(Catalogue& catalogue) {
    std::vector<SymbolChoice> secondOptions = mapOptions();
    secondOptions.emplace_back("same_as_map_one", MapOption::SameAsMapOne);
    catalogue.add("krlImageDisplacementMapComposite", displacementMapComposite)
        .summary("Moves each pixel by what two pictures say: one across, one up and down.")
        .words("distort, warp, glass, refraction, bump")
        .image("dMapOne", {}, "portrait.png",
               "map of the shift across, of the picture's size; its transparency weakens it")
        .symbol("colouringOptionOne", mapOptions(),
                refused("Displacement Map Composite invalid input colouring option one (Image)"),
                "what of the first map counts: bright reads from the right, dark from the left")
        .showing("luminosity")
        .image("dMapTwo", {}, "portrait.png",
               "map of the shift up and down, of the picture's size; its transparency weakens it")
        .symbol("colouringOptionTwo", std::move(secondOptions),
                refused("Displacement Map Composite invalid input colouring option two (Image)"),
                "what of the second map counts: bright reads from above, dark from below")
        .showing("same_as_map_one")
        .real("hDistance", {.from = 0, .to = 200, .example = 60, .least = 0, .pixels = true},
              "twice the longest shift across, in pixels")
        .real("vDistance", {.from = 0, .to = 200, .example = 40, .least = 0, .pixels = true},
              "twice the longest shift up and down, in pixels")
        .symbol("edgeOption", {{"wrap", MapEdge::Wrap}, {"repeat", MapEdge::Repeat}},
                refused("Displacement Map Composite invalid input edge option (Image)"),
                "beyond the edge, wrap shows the pixels of the edge and repeat the other side")
        .inputFailure("Displacement Map Composite input failure (Image)")
        .failed("Failed Displacement Map Composite function (Image)");
}

}  // namespace krl
