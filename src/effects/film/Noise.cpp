#include <algorithm>

#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/Batch.h"
#include "core/PixelWord.h"
#include "core/Random.h"
#include "core/VectorLevels.h"
#include "krlimage/film.h"

namespace krl {

namespace {

/// The largest product that still gives 255.
constexpr int32_t kMostThousandths = 255'999;

/// `x / 1000` for an `x` up to there: by 8, and by 125 as a multiplication.
constexpr uint32_t thousandths(int32_t x) { return (static_cast<uint32_t>(x) >> 3) * 67109u >> 23; }
static_assert([] {
    for (int32_t x = 0; x <= kMostThousandths; ++x)
        if (thousandths(x) != static_cast<uint32_t>(x / 1000)) return false;
    return true;
}());

/// colour = colour * (1000 + shift) / 1000 and alpha = alpha + shift, limited, by one shift for each pixel.
template <bool colour, bool alpha>
inline void applyNoise(Pixel* pixels, size_t count, const int32_t* shifts) {
    for (size_t i = 0; i < count; ++i) {
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

/// The shifts of a batch: a draw each, evenly spread around 0.
KRL_VECTOR_LEVELS void drawShifts(RandomRun& draws, DrawRemainder remainder, int32_t half, int32_t* shifts) {
    for (size_t i = 0; i < kBatchPixels; i += RandomRun::kLanes) draws.next(shifts + i);
    for (size_t i = 0; i < kBatchPixels; ++i) shifts[i] = wrapSubtract(remainder(shifts[i]), half);
}

KRL_VECTOR_LEVELS void noisePixels(Pixel* pixels, size_t count, const int32_t* shifts) {
    applyNoise<true, true>(pixels, count, shifts);
}
KRL_VECTOR_LEVELS void noiseColours(Pixel* pixels, size_t count, const int32_t* shifts) {
    applyNoise<true, false>(pixels, count, shifts);
}
KRL_VECTOR_LEVELS void noiseAlpha(Pixel* pixels, size_t count, const int32_t* shifts) {
    applyNoise<false, true>(pixels, count, shifts);
}

}  // namespace

/// Scales each pixel by a random factor and shifts its alpha by a random number. A varience of 0 or less
/// changes nothing.
Status noise(ImageEngine& engine, float varience, int32_t seed, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    if (varience <= 0) return kStatusOk;
    const int32_t half = truncate(varience * 1000.0);
    const DrawRemainder remainder(std::max(1, wrapMultiply(half, 2)));
    const auto apply = target == ChannelTarget::RGBA  ? noisePixels
                       : target == ChannelTarget::RGB ? noiseColours
                                                      : noiseAlpha;
    const int32_t bands = engine.getThreadCount();
    return runBands(engine, bands, [&](int32_t band) {
        const IndexRange share = pixelBand(engine, bands, band);
        if (share.first >= share.last) return;
        // A band reads one draw for each pixel of a sequence that has one for each byte.
        Random random(seed);
        random.skip(uint64_t{4} * static_cast<uint64_t>(share.first));
        RandomRun draws(random);
        Pixel* const first = engine.buffer()->row(0) + share.first;
        forEachBatch(static_cast<size_t>(share.last - share.first), [&](size_t start, size_t count) {
            engine.throwIfCancelled();
            int32_t shifts[kBatchPixels];
            drawShifts(draws, remainder, half, shifts);
            apply(first + start, count, shifts);
        });
    });
}

namespace {

/// What an unknown symbol becomes before the seed replaces it.
constexpr int32_t kUnknownTarget = 0;

/// There is no number for an unknown symbol: the seed is taken for one.
Outcome makeNoise(Call& call) {
    const auto seed = call.get<int32_t>(1), named = call.get<int32_t>(2);
    const auto target = static_cast<ChannelTarget>(named == kUnknownTarget ? seed : named);
    const Status status = noise(*call.engine(), call.get<float>(0), seed, target);
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace

void describeNoise(Catalogue& catalogue) {
    catalogue.add("krlImageNoise")
        .summary("Adds noise that is stronger where the picture is brighter.")
        .words("grain, speckle, static, interference")
        .real("varience", {.from = 0, .to = 1, .example = 0.15, .least = 0, .neutral = 0},
              "largest change, as a share of the level; 0 or less adds nothing")
        .integer("seed", {.from = 0, .to = 10000, .example = 7}, "the same number gives the same noise")
        .symbol("colourOrAlpha", anyChannels(), otherwise(kUnknownTarget),
                "colours and transparency, colours, or transparency alone")
        .showing("RGB")
        .inputFailure("Noise input failure (Image)")
        .failed("Failed Noise function (Image)")
        .dependsOnBands()
        .does(makeNoise);
}

}  // namespace krl
