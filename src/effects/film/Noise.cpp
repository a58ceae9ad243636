#include "effects/film/Noise.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/PixelWord.h"
#include "core/Random.h"
#include "core/VectorLevels.h"
#include "effects/film/SmoothNoise.h"
#include "kernels/curve/ByteCurve.h"

namespace krl {

namespace {

constexpr ptrdiff_t kNoiseBlock = 64;

/// What counts as 255 and no more.
constexpr int32_t kMostThousandths = 255'999;

/// `x / 1000` for an `x` up to there: by 8, and by 125 as a multiplication.
constexpr uint32_t thousandths(int32_t x) { return (static_cast<uint32_t>(x) >> 3) * 67109u >> 23; }
static_assert([] {
    for (int32_t x = 0; x <= kMostThousandths; ++x)
        if (thousandths(x) != static_cast<uint32_t>(x / 1000)) return false;
    return true;
}());

/// Scales the colours of up to a block of pixels and shifts their alpha, by one number for each.
template <bool colour, bool alpha>
inline void applyNoise(Pixel* pixels, ptrdiff_t count, const int32_t* shifts) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t factor = wrapAdd(shifts[i], 1000);
        const auto scaled = [=](uint32_t at) {
            return thousandths(clampTo(wrapMultiply(byteAt(word, at), factor), 0, kMostThousandths)) << at;
        };
        const auto shifted = static_cast<uint32_t>(clampTo(wrapAdd(byteAt(word, 24), shifts[i]), 0, 255))
                             << 24;
        const uint32_t colours = colour ? scaled(0) | scaled(8) | scaled(16) : word & 0x00FFFFFFu;
        storeWord(pixels[i], colours | (alpha ? shifted : word & 0xFF000000u));
    }
}

/// The numbers of a block: a draw each, evenly spread around 0.
KRL_VECTOR_LEVELS void drawShifts(RandomRun& draws, DrawRemainder remainder, int32_t half, int32_t* shifts) {
    for (ptrdiff_t i = 0; i < kNoiseBlock; i += ptrdiff_t(RandomRun::kLanes)) draws.next(shifts + i);
    for (ptrdiff_t i = 0; i < kNoiseBlock; ++i) shifts[i] = wrapSubtract(remainder(shifts[i]), half);
}

KRL_VECTOR_LEVELS void noisePixels(Pixel* pixels, ptrdiff_t count, const int32_t* shifts) {
    applyNoise<true, true>(pixels, count, shifts);
}
KRL_VECTOR_LEVELS void noiseColours(Pixel* pixels, ptrdiff_t count, const int32_t* shifts) {
    applyNoise<true, false>(pixels, count, shifts);
}
KRL_VECTOR_LEVELS void noiseAlpha(Pixel* pixels, ptrdiff_t count, const int32_t* shifts) {
    applyNoise<false, true>(pixels, count, shifts);
}

}  // namespace

Status noise(ImageEngine& engine, float varience, int32_t seed, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (varience <= 0) return kStatusOk;
    const int32_t half = truncate(varience * 1000.0);
    const DrawRemainder remainder(std::max(1, wrapMultiply(half, 2)));
    const auto apply = target == ChannelTarget::RGBA  ? noisePixels
                       : target == ChannelTarget::RGB ? noiseColours
                                                      : noiseAlpha;
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        // A band reads one draw for each pixel of a sequence that has one for each byte.
        Random random(seed);
        random.skip(uint64_t{4} * static_cast<uint64_t>(first - engine.buffer()->row(0)));
        RandomRun draws(random);
        while (first != last) {
            const ptrdiff_t count = std::min(kNoiseBlock, last - first);
            int32_t shifts[kNoiseBlock];
            drawShifts(draws, remainder, half, shifts);
            apply(first, count, shifts);
            first += count;
        }
    });
}

namespace {

/// The grain of one colour.
struct ColourGrain {
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

/// Luma of a run of pixels, truncated.
KRL_VECTOR_LEVELS void lumasOf(const Pixel* pixels, int32_t count, uint8_t* lumas) {
    for (int32_t x = 0; x < count; ++x) {
        const uint32_t word = wordOf(pixels[x]);
        const float blue = static_cast<float>(byteAt(word, 0) * 114) / 1000.0f;
        const float green = static_cast<float>(byteAt(word, 8) * 587) / 1000.0f;
        const float red = static_cast<float>(byteAt(word, 16) * 299) / 1000.0f;
        lumas[x] = truncatedByte(double{blue} + green + red);
    }
}

/// Grained bytes and how far they show, for one colour of a row.
struct GrainRow {
    std::vector<uint8_t> grained, shown;
};

/// Mixes the colours of a run of pixels with grained ones, each `shown` in 255ths; rows in the order
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
    GrainPainter(const LookupTables& tables, const std::vector<ColourGrain>& grains, int32_t width)
        : tables_(tables), grains_(grains), width_(width), lumas_(size_t(width)) {
        walks_.reserve(grains.size());
        for (const ColourGrain& grain : grains) walks_.emplace_back(grain.noise);
        for (GrainRow& row : rows_)
            row = {std::vector<uint8_t>(size_t(width)), std::vector<uint8_t>(size_t(width))};
    }

    void paintRow(Pixel* pixels, int32_t y) {
        lumasOf(pixels, width_, lumas_.data());
        const uint8_t* levels = nullptr;
        for (size_t colour = 0; colour < 3; ++colour) {  // red first, as the grains stand
            const size_t source = std::min(colour, walks_.size() - 1);
            if (source == colour) levels = walks_[source].levelsOf(y);
            const size_t channel = 2 - colour;
            fillRow(pixels, channel, levels, grains_[source].strength, rows_[channel]);
        }
        mixGrain(pixels, width_, {rows_[0].grained.data(), rows_[1].grained.data(), rows_[2].grained.data()},
                 {rows_[0].shown.data(), rows_[1].shown.data(), rows_[2].shown.data()});
    }

private:
    void fillRow(const Pixel* pixels, size_t channel, const uint8_t* levels, const ByteCurve& strength,
                 GrainRow& row) const {
        // Stores of bytes could change anything but what stands in locals.
        const uint8_t* lumas = lumas_.data();
        const uint8_t* shownByLuma = strength.data();
        const ByteSquare<uint8_t>& softLight = tables_.blendSoftLight;
        uint8_t *grained = row.grained.data(), *shown = row.shown.data();
        for (int32_t x = 0, width = width_; x < width; ++x)
            grained[x] = softLight[levels[x]][pixels[x][channel]];
        for (int32_t x = 0, width = width_; x < width; ++x) shown[x] = shownByLuma[lumas[x]];
    }

    const LookupTables& tables_;
    const std::vector<ColourGrain>& grains_;
    int32_t width_;
    std::vector<SmoothNoise::Walk> walks_;
    std::vector<uint8_t> lumas_;
    GrainRow rows_[3];
};

}  // namespace

Status grain(ImageEngine& engine, float frequencyRed, float frequencyGreen, float frequencyBlue,
             float strengthRed, float strengthGreen, float strengthBlue, int32_t lowerBand, int32_t upperBand,
             int32_t seed, GrainColour colourMethod) {
    if (Status state = engine.imageStatus()) return state;
    const float frequencies[] = {frequencyRed, frequencyGreen, frequencyBlue};
    const float strengths[] = {strengthRed, strengthGreen, strengthBlue};
    const size_t count = colourMethod == GrainColour::GREYSCALE ? 1 : 3;
    if (std::all_of(strengths, strengths + count, [](float s) { return keptLevel(s) == 255; }))
        return kStatusOk;

    const ImageBuffer& image = *engine.buffer();
    if (image.width <= 0) return kStatusOk;
    const std::array<float, 256> band = bandTable(lowerBand, upperBand);
    Random random(seed);
    std::vector<ColourGrain> grains;
    for (size_t i = 0; i < count; ++i) {
        const int32_t offset = random.next() % 5000, kept = keptLevel(strengths[i]);
        grains.push_back(
            {byteCurve([&](int32_t luma) { return truncatedByte(double{band[size_t(luma)]} - kept); }),
             SmoothNoise(image.width, offset, reciprocalOf(frequencies[i]))});
    }
    std::vector<GrainPainter> painters;
    painters.reserve(size_t(engine.getThreadCount()));
    for (int32_t i = 0; i < engine.getThreadCount(); ++i)
        painters.emplace_back(engine.tables(), grains, image.width);

    return runBands(engine.getThreadCount(), [&](int32_t i) {
        const IndexRange rows = lineBand(image.height, engine.getThreadCount(), i);
        for (int32_t y = rows.first; y < rows.last; ++y) painters[size_t(i)].paintRow(image.row(y), y);
    });
}

}  // namespace krl
