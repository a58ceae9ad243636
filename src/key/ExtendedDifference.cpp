#include <array>

#include "core/LookupTables.h"
#include "core/Scratch.h"
#include "filters/Gradient3x3.h"
#include "key/DifferenceKeys.h"
#include "key/KeyMatte.h"

namespace krl {

namespace {

using ByteMap = Scratch<uint8_t>;

/// The least and the greatest of the bytes seen.
struct ByteRange {
    int32_t low = 255, high = 0;

    void add(int32_t value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

/// Fills `map` with the flatness of every pixel, 255 where no edge is and on the picture's border,
/// and gives its range.
ByteRange mapFlatness(const LookupTables& tables, const ImageBuffer& image, const ByteMap& map) {
    const int32_t width = image.width;
    const Scratch<Pixel> strengths{size_t(width)};
    ByteRange range;
    uint8_t* out = map.data();
    for (int32_t y = 0; y < image.height; ++y) {
        std::fill_n(strengths.data(), width, Pixel{0, 0, 0, 0});
        if (y > 0 && y < image.height - 1 && width > 2)
            sobelStrengths(image.row(y - 1) + 1, image.row(y) + 1, image.row(y + 1) + 1, width - 2,
                           strengths.data() + 1);
        for (const Pixel& edge : strengths) {
            *out = static_cast<uint8_t>(tables.meanOf3[765 - (edge.blue + edge.green + edge.red)]);
            range.add(*out++);
        }
    }
    return range;
}

/// What the picture tells of its backing: the range of the differences, and of the key channel on
/// pixels that are backing for certain.
struct Backing {
    ByteRange difference, key;
};

/// Fills `map` with the difference of every pixel, 0 where there is none.
template <size_t key>
Backing mapDifference(const ImageBuffer& image, float colorRange, const ByteMap& map) {
    const double keyGate = static_cast<float>((1.0 - colorRange) * 127.5);
    Backing backing;
    uint8_t* out = map.data();
    for (int32_t y = 0; y < image.height; ++y)
        for (const Pixel *p = image.row(y), *last = p + image.width; p != last; ++p) {
            if (largerOther<key>(*p) + keyGate < (*p)[key]) backing.key.add((*p)[key]);
            const int32_t difference = std::max(0, keyDifference<key>(*p));
            backing.difference.add(difference);
            *out++ = static_cast<uint8_t>(difference);
        }
    if (backing.key.high < backing.key.low) backing.key = {0, 255};
    return backing;
}

/// A range narrowed from both ends by `contrast` of its width.
struct Stretch {
    float low, high;

    Stretch(const ByteRange& range, float contrast) {
        const double margin = static_cast<float>((range.high - range.low) * double(contrast));
        high = static_cast<float>(range.high - margin);
        low = static_cast<float>(range.low + margin);
    }

    /// 0 below, 255 above, and in between in proportion; no number where the range has no width.
    double level(double value) const {
        if (value > high) return 255.0;
        if (value < low) return 0.0;
        return clampTo((value - low) / (double(high) - low) * 255.0, 0.0, 255.0);
    }
};

/// 0 up to `dark`, 255 from the darkest backing on, and in between in proportion.
double luminanceLevel(double brightest, double keyLow, double dark) {
    if (brightest >= keyLow) return 255.0;
    if (brightest <= dark) return 0.0;
    return clampTo((brightest - dark) / (keyLow - dark) * 255.0, 0.0, 255.0);
}

/// The three terms of the matte, each by the byte that it hangs on.
struct MatteTerms {
    std::array<uint8_t, 256> difference;
    std::array<float, 256> edge, luminance;

    MatteTerms(const Stretch& differences, const Stretch& edges, int32_t keyLow, float luminocityContrast) {
        const double dark = static_cast<float>(keyLow * double(luminocityContrast));
        for (size_t i = 0; i < 256; ++i) {
            const auto byte = static_cast<double>(i);
            // A picture without edges is flat everywhere.
            const bool onFlat = edges.high == edges.low && byte == edges.low;
            difference[i] = truncatedByte(differences.level(byte));
            edge[i] = static_cast<float>(onFlat ? 255.0 : edges.level(byte));
            luminance[i] = static_cast<float>(luminanceLevel(byte, keyLow, dark));
        }
    }

    /// An edge only halves the term of a bright pixel; a dark one is ruled by its luminance alone.
    uint8_t matte(uint8_t differenceByte, uint8_t flatness, uint8_t brightest) const {
        const float bright = luminance[brightest], flat = edge[flatness];
        const float held = bright <= flat ? bright : static_cast<float>((double(bright) + flat) * 0.5);
        const uint8_t stretched = difference[differenceByte];
        return stretched < held ? stretched : truncatedByte(held);
    }
};

}  // namespace

Status colourDifferenceExtended(ImageEngine& engine, KeyColour colorSymbol, float colorRange,
                                float edgeContast, float luminocityContrast, float colorDifferenceContrast,
                                bool keep, bool invert) {
    if (engine.imageStatus()) return kStatusRefused;
    const ImageBuffer& image = *engine.buffer();
    const size_t pixelCount = size_t(image.width) * size_t(image.height);
    const ByteMap flatnessMap(pixelCount), differenceMap(pixelCount);
    const ByteRange flatness = mapFlatness(engine.tables(), image, flatnessMap);
    const Backing backing = withKeyChannel(
        colorSymbol, [&](auto key) { return mapDifference<key>(image, colorRange, differenceMap); });

    const MatteTerms terms(Stretch(backing.difference, colorDifferenceContrast),
                           Stretch(flatness, edgeContast), backing.key.low, luminocityContrast);
    const uint8_t *flat = flatnessMap.data(), *difference = differenceMap.data();
    for (int32_t y = 0; y < image.height; ++y)
        for (Pixel *p = image.row(y), *last = p + image.width; p != last; ++p) {
            const uint8_t brightest = std::max({p->blue, p->green, p->red});
            p->alpha = applyKeyMatte(p->alpha, terms.matte(*difference++, *flat++, brightest), keep, invert);
        }
    return kStatusOk;
}

}  // namespace krl
