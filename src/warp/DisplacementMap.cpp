#include "warp/DisplacementMap.h"

#include <algorithm>
#include <cmath>

#include "core/Clones.h"
#include "core/ColourSpace.h"
#include "core/LookupTables.h"
#include "warp/PositionWarp.h"

namespace krl {

namespace {

/// A run of a map's row: its values, and what each shifts by before its alpha weakens it.
struct MapRun {
    uint8_t values[kRunPixels];
    uint8_t alphas[kRunPixels];
    float shifts[kRunPixels];
};

template <class Value>
void fillValues(MapRun& run, const Pixel* pixels, size_t count, Value&& value) {
    for (size_t i = 0; i < count; ++i) run.values[i] = static_cast<uint8_t>(value(pixels[i]));
}

Hls hlsOf(Pixel p) { return rgbToHls(p.red, p.green, p.blue); }

int32_t lightnessOf(Pixel p) {
    return (std::max({p.red, p.green, p.blue}) + std::min({p.red, p.green, p.blue}) + 1) / 2;
}

/// The values of `option` in a run of pixels. `SameAsMapOne` leaves them as they are.
void readValues(MapRun& run, const Pixel* pixels, size_t count, MapOption option, const LookupTables& t) {
    const auto fill = [&](auto value) { fillValues(run, pixels, count, value); };
    switch (option) {
        case MapOption::SameAsMapOne:
            return;
        case MapOption::Red:
            return fill([](Pixel p) { return p.red; });
        case MapOption::Green:
            return fill([](Pixel p) { return p.green; });
        case MapOption::Blue:
            return fill([](Pixel p) { return p.blue; });
        case MapOption::Alpha:
            return fill([](Pixel p) { return p.alpha >> 1; });
        case MapOption::Greyscale:
            return fill([&](Pixel p) { return t.meanOf3[p.blue + p.green + p.red]; });
        case MapOption::Luminosity:
            return fill([&](Pixel p) {
                return static_cast<int32_t>(double(t.lumaRed[p.red]) + t.lumaGreen[p.green] +
                                            t.lumaBlue[p.blue]);
            });
        case MapOption::Hue:
            return fill(
                [](Pixel p) { return static_cast<int32_t>(std::max(0, hlsOf(p).hue) / 360.0 * 255); });
        case MapOption::Saturation:
            return fill([](Pixel p) { return static_cast<int32_t>(hlsOf(p).saturation / 720.0 * 255); });
        case MapOption::Lightness:
            return fill(lightnessOf);
        case MapOption::Off:
            return fill([](Pixel) { return 128; });
    }
}

/// A map as it shifts: what each value shifts by at full alpha.
class ShiftMap {
public:
    /// `sign` is the way that dark values read from: -1 is left or up.
    ShiftMap(const SecondImage& image, MapOption option, float distance, float sign,
             const LookupTables& tables)
        : image_(image), option_(option), tables_(tables) {
        for (size_t i = 0; i < 256; ++i) {
            const double unit = tables.unitFromByte[i];
            const double below = unit < 0.5 ? unit - 0.5 : 0.5 - unit;
            const auto shift = static_cast<float>(below * distance);
            shifts_[i] = unit < 0.5 ? -sign * shift : sign * shift;
        }
    }

    /// Reads the values at row `y` from column `x` on. For the same values as another map's, `run` holds
    /// those beforehand.
    void read(MapRun& run, int32_t y, int32_t x, size_t count) const {
        const Pixel* pixels =
            reinterpret_cast<const Pixel*>(image_.pixels + ptrdiff_t(image_.info.rowBytes) * y) + x;
        readValues(run, pixels, count, option_, tables_);
        for (size_t i = 0; i < count; ++i) {
            run.shifts[i] = shifts_[run.values[i]];
            run.alphas[i] = pixels[i].alpha;
        }
    }

private:
    const SecondImage& image_;
    MapOption option_;
    const LookupTables& tables_;
    float shifts_[256];
};

/// Where pixels at `start`, `start + step` and so on are shifted to. The quotient is `unitFromByte`.
KRL_WIDE_CLONES void shiftPlaces(const MapRun& run, int32_t start, int32_t step, size_t count,
                                 float* __restrict places) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t place = start + step * static_cast<int32_t>(i);
        const float alpha = static_cast<float>(run.alphas[i]) / 255.0f;
        places[i] = static_cast<float>(place + static_cast<double>(alpha) * run.shifts[i]);
    }
}

/// A place brought into a line of `length` pixels by whole lengths, as often as it takes.
float folded(float place, int32_t length) {
    const auto end = static_cast<float>(length);
    if (place >= 0 && place < end) return place;
    const double rest = std::fmod(static_cast<double>(place), length);
    const auto inside = static_cast<float>(rest < 0 ? rest + length : rest);
    return inside >= end ? inside - end : inside;
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

    const ShiftMap horizontal(dMapOne, colouringOptionOne, across, -1, engine.tables());
    const ShiftMap vertical(dMapTwo, colouringOptionTwo, down, 1, engine.tables());
    const int32_t width = engine.buffer()->width, height = engine.buffer()->height;
    const auto warp = [&](auto edged) {
        return warpByPosition(engine, SampleQuality::Bilinear, ChannelTarget::RGBA,
                              [&](int32_t y, int32_t first, PositionRun& run) {
                                  MapRun map;
                                  horizontal.read(map, y, first, run.count);
                                  shiftPlaces(map, first, 1, run.count, run.x);
                                  for (size_t i = 0; i < run.count; ++i) run.x[i] = edged(run.x[i], width);
                                  vertical.read(map, y, first, run.count);
                                  shiftPlaces(map, y, 0, run.count, run.y);
                                  for (size_t i = 0; i < run.count; ++i) run.y[i] = edged(run.y[i], height);
                              });
    };
    if (edgeOption == MapEdge::Wrap)
        return warp([](float place, int32_t length) { return heldInside(place, length); });
    return warp(folded);
}

}  // namespace krl
