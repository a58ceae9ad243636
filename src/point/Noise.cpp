#include "point/Noise.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/Bands.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "point/ByteCurve.h"
#include "point/SmoothNoise.h"

namespace krl {

Status noise(ImageEngine& engine, float varience, int32_t seed, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (varience <= 0) return kStatusOk;
    const int32_t half = truncate(varience * 1000.0);
    const int32_t range = std::max(1, wrapMultiply(half, 2));
    const bool colour = target == ChannelTarget::RGBA || target == ChannelTarget::RGB;
    const bool alpha = target != ChannelTarget::RGB;
    return forEachPixelRun(engine, [&](Pixel* first, Pixel* last) {
        // A band reads one draw for each pixel of a sequence that has one for each byte.
        Random random(seed);
        random.skip(uint64_t{4} * static_cast<uint64_t>(first - engine.buffer()->row(0)));
        for (Pixel* p = first; p != last; ++p) {
            const int32_t shift = wrapSubtract(random.next() % range, half);
            if (colour) {
                const int32_t factor = wrapAdd(shift, 1000);
                for (size_t channel = 0; channel < 3; ++channel)
                    (*p)[channel] = clampByte(wrapMultiply((*p)[channel], factor) / 1000);
            }
            if (alpha) p->alpha = clampByte(wrapAdd(p->alpha, shift));
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

/// One grain, or one for each of red, green and blue, walked down a band together.
class GrainPainter {
public:
    GrainPainter(const LookupTables& tables, const std::vector<ColourGrain>& grains)
        : tables_(tables), grains_(grains) {
        walks_.reserve(grains.size());
        for (const ColourGrain& grain : grains) walks_.emplace_back(grain.noise);
    }

    void paintRow(Pixel* row, int32_t y, int32_t width) {
        std::array<const uint8_t*, 3> levels{};
        for (size_t i = 0; i < walks_.size(); ++i) levels[i] = walks_[i].levelsOf(y);
        const bool grey = walks_.size() == 1;
        for (int32_t x = 0; x < width; ++x) {
            Pixel& p = row[x];
            if (p.alpha == 0) continue;
            const auto luma = static_cast<size_t>(truncate(
                double{tables_.lumaBlue[p.blue]} + tables_.lumaGreen[p.green] + tables_.lumaRed[p.red]));
            p.red = mixed(p.red, levels[0][x], grains_[0].strength[luma]);
            p.green = mixed(p.green, levels[grey ? 0 : 1][x], grains_[grey ? 0 : 1].strength[luma]);
            p.blue = mixed(p.blue, levels[grey ? 0 : 2][x], grains_[grey ? 0 : 2].strength[luma]);
        }
    }

private:
    uint8_t mixed(uint8_t byte, uint8_t level, uint8_t strength) const {
        return static_cast<uint8_t>(tables_.scaleByte[strength][tables_.blendSoftLight[level][byte]] +
                                    tables_.scaleByte[255 - strength][byte]);
    }

    const LookupTables& tables_;
    const std::vector<ColourGrain>& grains_;
    std::vector<SmoothNoise::Walk> walks_;
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
    for (int32_t i = 0; i < engine.getThreadCount(); ++i) painters.emplace_back(engine.tables(), grains);

    return runBands(engine.getThreadCount(), [&](int32_t i) {
        const IndexRange rows = lineBand(image.height, engine.getThreadCount(), i);
        for (int32_t y = rows.first; y < rows.last; ++y)
            painters[size_t(i)].paintRow(image.row(y), y, image.width);
    });
}

}  // namespace krl
