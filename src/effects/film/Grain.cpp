#include <algorithm>
#include <array>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/LookupTables.h"
#include "core/PixelWord.h"
#include "core/Random.h"
#include "core/VectorLevels.h"
#include "effects/film/SmoothNoise.h"
#include "kernels/colour/Grey.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// The grain of one colour over the whole picture.
struct GrainLayer {
    ByteCurve strength;  ///< by luma
    SmoothNoise noise;
};

/// How far the grain shows at each luma: in full between the bands, fading to none at 0 and 255.
std::array<float, 256> bandTable(int32_t lowerBand, int32_t upperBand) {
    std::array<float, 256> band;
    for (int32_t i = 0; i < 256; ++i) {
        double shown = 255.0;
        if (i < lowerBand) {
            shown = 255.0 / lowerBand * i;
        } else if (i > upperBand) {
            shown = 255.0 / (255.0 - upperBand) * (255 - i);
        }
        band[size_t(i)] = static_cast<float>(shown);
    }
    return band;
}

/// How much of the picture is kept at full show.
int32_t keptLevel(float strength) { return truncatedByte((1.0 - strength) * 255.0); }

float reciprocalOf(float frequency) {
    return static_cast<float>(1.0 / (frequency < 1.0f ? 1.0f : frequency));
}

/// The grain of each colour, each with a place of its own in the noise. Colours draw from the seed in order.
std::vector<GrainLayer> grainLayers(std::span<const ColourGrain> colours, const GrainSettings& settings,
                                    int32_t width) {
    const std::array<float, 256> band = bandTable(settings.lowerBand, settings.upperBand);
    Random random(settings.seed);
    std::vector<GrainLayer> layers;
    for (const ColourGrain& colour : colours) {
        const int32_t offset = random.next() % 5000, kept = keptLevel(colour.strength);
        layers.push_back(
            {byteCurve([&](int32_t luma) { return truncatedByte(double{band[size_t(luma)]} - kept); }),
             SmoothNoise(width, offset, reciprocalOf(colour.frequency))});
    }
    return layers;
}

/// Luma of a span of pixels, truncated.
KRL_VECTOR_LEVELS void lumasOf(const Pixel* pixels, int32_t count, uint8_t* lumas) {
    for (int32_t x = 0; x < count; ++x) {
        const uint32_t word = wordOf(pixels[x]);
        lumas[x] = truncatedByte(lumaOf(byteAt(word, 16), byteAt(word, 8), byteAt(word, 0)));
    }
}

/// Grained bytes and how far they show, for one colour of a row.
struct GrainRow {
    std::vector<uint8_t> grained, shown;
};

/// out = (shown * grained + (255 - shown) * in) / 255 for the colours of a span of pixels; rows in the order
/// blue, green, red.
KRL_VECTOR_LEVELS void mixGrain(Pixel* pixels, int32_t count, const uint8_t* const (&grained)[3],
                                const uint8_t* const (&shown)[3]) {
    const auto scale = [](uint32_t a, uint32_t b) { return dividedBy255(a * b); };
    const uint8_t *const g0 = grained[0], *const g1 = grained[1], *const g2 = grained[2];
    const uint8_t *const s0 = shown[0], *const s1 = shown[1], *const s2 = shown[2];
    for (int32_t x = 0; x < count; ++x) {
        const uint32_t word = wordOf(pixels[x]);
        const uint32_t blue = scale(s0[x], g0[x]) + scale(255u - s0[x], word & 255u);
        const uint32_t green = scale(s1[x], g1[x]) + scale(255u - s1[x], word >> 8 & 255u);
        const uint32_t red = scale(s2[x], g2[x]) + scale(255u - s2[x], word >> 16 & 255u);
        const uint32_t mixed = blue | green << 8 | red << 16 | (word & 0xFF000000u);
        storeWord(pixels[x], word >> 24 != 0 ? mixed : word);
    }
}

/// The grains of red, green and blue, or one for all, walked down a band together.
class GrainPainter {
public:
    GrainPainter(const LookupTables& tables, const std::vector<GrainLayer>& layers, int32_t width)
        : tables_(tables), layers_(layers), width_(width), lumas_(size_t(width)) {
        walks_.reserve(layers.size());
        for (const GrainLayer& layer : layers) walks_.emplace_back(layer.noise);
        for (GrainRow& row : rows_)
            row = {std::vector<uint8_t>(size_t(width)), std::vector<uint8_t>(size_t(width))};
    }

    void paintRow(Pixel* pixels, int32_t y) {
        lumasOf(pixels, width_, lumas_.data());
        const uint8_t* levels = nullptr;
        for (size_t colour = 0; colour < 3; ++colour) {  // red first, as in the layers
            const size_t source = std::min(colour, walks_.size() - 1);
            if (source == colour) levels = walks_[source].levelsOf(y);
            const size_t channel = 2 - colour;
            fillRow(pixels, channel, levels, layers_[source].strength, rows_[channel]);
        }
        mixGrain(pixels, width_, {rows_[0].grained.data(), rows_[1].grained.data(), rows_[2].grained.data()},
                 {rows_[0].shown.data(), rows_[1].shown.data(), rows_[2].shown.data()});
    }

private:
    void fillRow(const Pixel* pixels, size_t channel, const uint8_t* levels, const ByteCurve& strength,
                 GrainRow& row) const {
        // Stores of bytes could change anything but locals.
        const uint8_t* lumas = lumas_.data();
        const uint8_t* shownByLuma = strength.data();
        const ByteSquare<uint8_t>& softLight = tables_.blendSoftLight;
        uint8_t *grained = row.grained.data(), *shown = row.shown.data();
        for (int32_t x = 0, width = width_; x < width; ++x)
            grained[x] = softLight[levels[x]][pixels[x][channel]];
        for (int32_t x = 0, width = width_; x < width; ++x) shown[x] = shownByLuma[lumas[x]];
    }

    const LookupTables& tables_;
    const std::vector<GrainLayer>& layers_;
    int32_t width_;
    std::vector<SmoothNoise::Walk> walks_;
    std::vector<uint8_t> lumas_;
    GrainRow rows_[3];
};

}  // namespace

/// Lays smooth noise over each colour in soft light, as far as strength and luma let it show. A frequency is
/// at least 1, a strength limited to 0..1.
Status grain(ImageEngine& engine, const GrainSettings& settings) {
    if (Status state = engine.imageStatus()) return state;
    std::vector<ColourGrain> colours{settings.red};
    if (settings.colourMethod != GrainColour::GREYSCALE)
        colours.insert(colours.end(), {settings.green, settings.blue});
    const auto showsNothing = [](const ColourGrain& colour) { return keptLevel(colour.strength) == 255; };
    if (std::all_of(colours.begin(), colours.end(), showsNothing)) return kStatusOk;

    const ImageBuffer& image = *engine.buffer();
    if (image.width <= 0) return kStatusOk;
    const std::vector<GrainLayer> layers = grainLayers(colours, settings, image.width);
    std::vector<GrainPainter> painters;
    painters.reserve(size_t(engine.getThreadCount()));
    for (int32_t i = 0; i < engine.getThreadCount(); ++i)
        painters.emplace_back(engine.tables(), layers, image.width);

    return runBands(engine, engine.getThreadCount(), [&](int32_t i) {
        const IndexRange rows = lineBand(image.height, engine.getThreadCount(), i);
        for (int32_t y = rows.first; y < rows.last; ++y) {
            engine.throwIfCancelled();
            painters[size_t(i)].paintRow(image.row(y), y);
        }
    });
}

void describeGrain(Catalogue& catalogue) {
    const auto effect = [](ImageEngine& engine, float frequencyRed, float frequencyGreen, float frequencyBlue,
                           float strengthRed, float strengthGreen, float strengthBlue, int32_t lowerBand,
                           int32_t upperBand, int32_t seed, GrainColour colourMethod) {
        return grain(engine, {{frequencyRed, strengthRed},
                              {frequencyGreen, strengthGreen},
                              {frequencyBlue, strengthBlue},
                              lowerBand,
                              upperBand,
                              seed,
                              colourMethod});
    };
    constexpr NumberRange frequency{.from = 1, .to = 20, .example = 2, .least = 1, .pixels = true};
    constexpr NumberRange strength{.from = 0, .to = 1, .example = 0.5, .least = 0, .most = 1};
    catalogue.add("krlImageGrain", +effect)
        .summary("Lays film grain over the mid tones.")
        .words("film grain, noise, texture, analogue")
        .real("frequencyRed", frequency, "size of the grain in pixels, at least 1, in red")
        .real("frequencyGreen", frequency, "size of the grain in green")
        .real("frequencyBlue", frequency, "size of the grain in blue")
        .real("strengthRed", strength, "how strongly the grain shows in red")
        .real("strengthGreen", strength, "strength of the grain in green")
        .real("strengthBlue", strength, "strength of the grain in blue")
        .integer("lowerBand", {.from = 0, .to = 255, .example = 60, .least = 0},
                 "level below which the grain fades toward black")
        .integer("upperBand", {.from = 0, .to = 255, .example = 200, .most = 255},
                 "level above which the grain fades toward white")
        .integer("seed", {.from = 0, .to = 10000, .example = 7}, "the same number gives the same grain")
        .symbol("colourMethod", {{"RGB", GrainColour::RGB}, {"GREYSCALE", GrainColour::GREYSCALE}},
                refused("Grain invalid colour method (Image)"),
                "grain of its own in each colour, or that of red in all three")
        .inputFailure("Grain input failure (Image)")
        .failed("Failed Grain function (Image)");
}

}  // namespace krl
