#include <array>
#include <cmath>

#include "catalogue/Catalogue.h"
#include "core/PixelWord.h"
#include "core/Scratch.h"
#include "core/VectorLevels.h"
#include "effects/key/DifferenceSpan.h"
#include "effects/key/KeyChannels.h"
#include "effects/key/KeyChoices.h"
#include "kernels/colour/Grey.h"
#include "kernels/matte/KeyMatte.h"
#include "kernels/neighbour/Gradient3x3.h"

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
    void add(const ByteRange& other) {
        low = std::min(low, other.low);
        high = std::max(high, other.high);
    }
};

/// Writes the flatness of `count` pixels from the strengths of their edges, and gives its range.
KRL_VECTOR_LEVELS ByteRange flatnessOf(const Pixel* strengths, size_t count, uint8_t* out) {
    int32_t low = 255, high = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(strengths[i]);
        const int32_t total = byteAt(word, 0) + byteAt(word, 8) + byteAt(word, 16);
        const int32_t flatness = static_cast<int32_t>(thirdOf(static_cast<uint32_t>(765 - total)));
        out[i] = static_cast<uint8_t>(flatness);
        low = flatness < low ? flatness : low;
        high = flatness > high ? flatness : high;
    }
    return {low, high};
}

/// Fills `map` with the flatness of every pixel, 255 where no edge is and on the picture's border,
/// and gives its range.
ByteRange mapFlatness(const ImageBuffer& image, const ByteMap& map) {
    const int32_t width = image.width;
    const Scratch<Pixel> strengths{size_t(width)};
    ByteRange range;
    for (int32_t y = 0; y < image.height; ++y) {
        std::fill_n(strengths.data(), width, Pixel{0, 0, 0, 0});
        if (y > 0 && y < image.height - 1 && width > 2)
            sobelStrengths(image.row(y - 1) + 1, image.row(y) + 1, image.row(y + 1) + 1, width - 2,
                           strengths.data() + 1);
        range.add(flatnessOf(strengths.data(), size_t(width), map.data() + size_t(y) * size_t(width)));
    }
    return range;
}

/// What the picture tells of its backing: the range of the differences, and of the key channel on
/// pixels that are backing for certain.
struct Backing {
    ByteRange difference, key;
};

/// The largest difference of a pixel that is not backing for certain.
int32_t keyGate(float colorRange) {
    const auto gate = static_cast<float>((1.0 - colorRange) * 127.5);
    return std::isnan(gate) ? 255 : truncate(std::floor(clampTo(gate, -256.0f, 255.0f)));
}

/// Writes the differences of a row, 0 where there is none, and gives what they tell.
KRL_VECTOR_LEVELS Backing backingOf(const Pixel* row, const int16_t* differences, int32_t count, uint32_t key,
                                    int32_t gate, uint8_t* out) {
    int32_t low = 255, high = 0, keyLow = 255, keyHigh = 0;
    for (int32_t i = 0; i < count; ++i) {
        const int32_t difference = differences[i] > 0 ? differences[i] : 0;
        out[i] = static_cast<uint8_t>(difference);
        low = difference < low ? difference : low;
        high = difference > high ? difference : high;
        const int32_t level = byteAt(wordOf(row[i]), key * 8);
        const bool isBacking = differences[i] > gate;
        const int32_t least = isBacking ? level : 255, most = isBacking ? level : 0;
        keyLow = least < keyLow ? least : keyLow;
        keyHigh = most > keyHigh ? most : keyHigh;
    }
    return {{low, high}, {keyLow, keyHigh}};
}

/// Fills `map` with the difference of every pixel.
Backing mapDifference(const ImageBuffer& image, KeyColour colour, float colorRange, const ByteMap& map) {
    const int32_t gate = keyGate(colorRange), width = image.width;
    const auto key = static_cast<uint32_t>(channelNumber(colour));
    const Scratch<int16_t> differences{size_t(width)};
    Backing backing;
    for (int32_t y = 0; y < image.height; ++y) {
        const Pixel* row = image.row(y);
        differencesOf(row, size_t(width), colour, differences.data());
        const Backing found =
            backingOf(row, differences.data(), width, key, gate, map.data() + size_t(y) * size_t(width));
        backing.difference.add(found.difference);
        backing.key.add(found.key);
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

/// The matte as the smaller of two bytes: the stretched difference, and what luminance and edges let
/// pass of it.
class MatteTerms {
public:
    MatteTerms(const Stretch& differences, const Stretch& edges, int32_t keyLow, float luminocityContrast) {
        const double dark = static_cast<float>(keyLow * double(luminocityContrast));
        for (size_t i = 0; i < 256; ++i) {
            difference_[i] = truncatedByte(differences.level(double(i)));
            const auto luminance = static_cast<float>(luminanceLevel(double(i), keyLow, dark));
            for (size_t flatness = 0; flatness < 256; ++flatness)
                passed_[i << 8 | flatness] = passedLevel(luminance, edges, double(flatness));
        }
    }

    /// Writes the mattes of `count` pixels.
    void mattesOf(const Pixel* pixels, const uint8_t* differences, const uint8_t* flatness, int32_t count,
                  uint8_t* mattes) const {
        const uint8_t* passed = passed_.data();
        for (int32_t i = 0; i < count; ++i) {
            const uint8_t limit = passed[size_t(largestChannel(pixels[i])) << 8 | flatness[i]];
            mattes[i] = std::min(difference_[differences[i]], limit);
        }
    }

private:
    /// An edge only halves the term of a bright pixel; a dark one is ruled by its luminance alone.
    static uint8_t passedLevel(float luminance, const Stretch& edges, double flatness) {
        // A picture without edges is flat everywhere.
        const bool onFlat = edges.high == edges.low && flatness == edges.low;
        const auto edge = static_cast<float>(onFlat ? 255.0 : edges.level(flatness));
        return truncatedByte(luminance <= edge ? luminance
                                               : static_cast<float>((double(luminance) + edge) * 0.5));
    }

    std::array<uint8_t, 256> difference_;
    Scratch<uint8_t> passed_{size_t(256) << 8};
};

}  // namespace

/// Keys on how far the backing's channel exceeds the larger of the other two, stretched by its own range. The
/// matte is the smaller of that and of what brightness and flatness let pass: nothing of what is darker than
/// the backing, half of what an edge crosses.
Status colourDifferenceExtended(ImageEngine& engine, KeyColour colorSymbol,
                                const ColourDifferenceContrasts& contrasts, bool keep, bool invert) {
    if (engine.imageStatus()) return kStatusRefused;
    const ImageBuffer& image = *engine.buffer();
    const size_t pixelCount = size_t(image.width) * size_t(image.height);
    const ByteMap flatnessMap(pixelCount), differenceMap(pixelCount);
    const ByteRange flatness = mapFlatness(image, flatnessMap);
    const Backing backing = mapDifference(image, colorSymbol, contrasts.colorRange, differenceMap);

    const MatteTerms terms(Stretch(backing.difference, contrasts.colorDifferenceContrast),
                           Stretch(flatness, contrasts.edgeContast), backing.key.low,
                           contrasts.luminocityContrast);
    const Scratch<uint8_t> mattes{size_t(image.width)};
    for (int32_t y = 0; y < image.height; ++y) {
        const size_t start = size_t(y) * size_t(image.width);
        terms.mattesOf(image.row(y), differenceMap.data() + start, flatnessMap.data() + start, image.width,
                       mattes.data());
        foldMattes(image.row(y), mattes.data(), size_t(image.width), keep, invert);
    }
    return kStatusOk;
}

void describeColourDifferenceExtended(Catalogue& catalogue) {
    catalogue.add("krlImageColourDifferenceExtended", colourDifferenceExtended)
        .summary("The colour difference, held back on dark places and along edges.")
        .words("green screen, greenscreen, blue screen, key, matte, cut out")
        .symbol("colorSymbol", backings(), refused("Colour Difference Extended invalid input colour (Image)"),
                "colour of the backing")
        .real("colorRange", {.from = 0, .to = 1, .example = 0.5, .least = -1},
              "how readily a pixel counts as certain backing")
        .real("edgeContast", {.from = 0, .to = 0.5, .example = 0.2},
              "how sharply edges are set apart from flat places; 0.5 makes a step")
        .real("luminocityContrast", {.from = 0, .to = 1, .example = 0.4, .most = 1},
              "how quickly places darker than the backing drop out; 1.0 at once")
        .real("colorDifferenceContrast", {.from = 0, .to = 0.5, .example = 0.3},
              "contrast of the difference; 0.5 makes a step")
        .symbol("keepRemove", keepOrRemove(),
                refused("Colour Difference Extended invalid input keep_remove option (Image)"), kKeepMeaning)
        .failsWith("ColourDifference Extended input failure (Image)")
        .thenCompare()
        .symbol("invert", invertOrNot(),
                refused("Colour Difference Extended invalid input invert option (Image)"),
                kInvertBackingMeaning)
        .showing("false")
        .inputFailure("Colour Difference Extended input failure (Image)")
        .failed("Failed Colour Difference function (Image)");
}

}  // namespace krl
