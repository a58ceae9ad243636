#include <algorithm>
#include <array>
#include <vector>

#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/Batch.h"
#include "core/ByteArithmetic.h"
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

/// Makes all colours of each pixel its luma, truncated.
KRL_VECTOR_LEVELS void spreadLumas(const Pixel* __restrict pixels, size_t count, Pixel* __restrict spread) {
    for (size_t x = 0; x < count; ++x) {
        const uint32_t word = wordOf(pixels[x]);
        const uint32_t luma = truncatedByte(lumaOf(byteAt(word, 16), byteAt(word, 8), byteAt(word, 0)));
        storeWord(spread[x], luma * 0x00010101u);
    }
}

/// out = (shown * grained + (255 - shown) * in) / 255 for the colours of a span of pixels, grained by soft
/// light; levels in the order blue, green, red.
KRL_VECTOR_LEVELS void mixGrain(Pixel* __restrict pixels, size_t count, const uint8_t* const (&levels)[3],
                                const Pixel* __restrict shown) {
    const uint8_t *const blue = levels[0], *const green = levels[1], *const red = levels[2];
    for (size_t x = 0; x < count; ++x) {
        const uint32_t word = wordOf(pixels[x]), shares = wordOf(shown[x]);
        const auto mixed = [=](uint32_t level, int shift) {
            const uint32_t in = word >> shift & 255u, share = shares >> shift & 255u;
            const uint32_t grained = softLitByte(level, in);
            return (dividedBy255(share * grained) + dividedBy255((255u - share) * in)) << shift;
        };
        const uint32_t fresh =
            mixed(blue[x], 0) | mixed(green[x], 8) | mixed(red[x], 16) | (word & 0xFF000000u);
        storeWord(pixels[x], word >> 24 != 0 ? fresh : word);
    }
}

/// The grains of red, green and blue, or one for all, walked down a band together.
class GrainPainter {
public:
    GrainPainter(const std::vector<GrainLayer>& layers, int32_t width)
        : width_(size_t(width)),
          strengths_{layers.back().strength, layers[layers.size() / 2].strength, layers.front().strength} {
        walks_.reserve(layers.size());
        for (const GrainLayer& layer : layers) walks_.emplace_back(layer.noise);
    }

    void paintRow(Pixel* pixels, int32_t y) {
        const uint8_t* row[3] = {};
        for (size_t colour = 0; colour < 3; ++colour)  // red first, as in the layers
            row[2 - colour] = colour < walks_.size() ? walks_[colour].levelsOf(y) : row[2];
        forEachBatch(width_, [&](size_t first, size_t count) {
            Pixel shown[kBatchPixels];
            spreadLumas(pixels + first, count, shown);
            applyCurves(shown, shown + count, strengths_);
            mixGrain(pixels + first, count, {row[0] + first, row[1] + first, row[2] + first}, shown);
        });
    }

private:
    size_t width_;
    std::vector<SmoothNoise::Walk> walks_;
    ColourCurves strengths_;  ///< how far the grains show, by luma
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
    for (int32_t i = 0; i < engine.getThreadCount(); ++i) painters.emplace_back(layers, image.width);

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
