#include "kernels/path/PathTile.h"

#include "core/ExactDivision.h"
#include "core/Gather.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

constexpr uint32_t kFields = 0x00FF00FF;

KRL_VECTOR_LEVELS
void addFields(const uint32_t* __restrict words, int32_t count, uint32_t* __restrict blueAndRed,
               uint32_t* __restrict greenAndAlpha) {
    for (int32_t i = 0; i < count; ++i) {
        blueAndRed[i] += words[i] & kFields;
        greenAndAlpha[i] += words[i] >> 8 & kFields;
    }
}

void addWeights(const uint32_t* words, int32_t count, const float* units, float* weights) {
    for (int32_t i = 0; i < count; ++i) weights[i] += units[words[i] >> 24];
}

KRL_VECTOR_LEVELS
void moveFields(uint32_t* __restrict fields, int32_t count, uint32_t* __restrict lower,
                uint32_t* __restrict upper) {
    for (int32_t i = 0; i < count; ++i) {
        lower[i] += fields[i] & 0xFFFF;
        upper[i] += fields[i] >> 16;
        fields[i] = 0;
    }
}

/// Divides as `MiddleByteQuotient` does, each path by a number of its own; that of no samples is 0.
KRL_VECTOR_LEVELS
void divideBySamples(const uint32_t (&sums)[4][PathTile::kPixels], const int32_t* __restrict samples,
                     int32_t count, Pixel* __restrict results) {
    for (int32_t i = 0; i < count; ++i) {
        const float reciprocal = 1.0f / static_cast<float>(samples[i] > 0 ? samples[i] : 1);
        const auto mean = [=](uint32_t sum) {
            const float half = static_cast<float>(static_cast<int32_t>(sum)) + 0.5f;
            return static_cast<uint32_t>(static_cast<int32_t>(half * reciprocal));
        };
        storeWord(results[i],
                  mean(sums[0][i]) | mean(sums[1][i]) << 8 | mean(sums[2][i]) << 16 | mean(sums[3][i]) << 24);
    }
}

}  // namespace

void TileSums::add(const int32_t* offsets, int32_t count) {
    uint32_t words[PathTile::kPixels];
    gatherWords(pixels_, offsets, count, words);
    addFields(words, count, blueAndRed_, greenAndAlpha_);
    if (units_) addWeights(words, count, units_, weights_);
    if (++held_ == kFieldSamples) gather(count);
}

void TileSums::addRepeatedly(int32_t i, int32_t offset, int64_t times) {
    const Pixel p = pixels_[offset];
    for (size_t c = 0; c < 4; ++c) sums_[c][i] += static_cast<uint32_t>(times) * p[c];
    if (units_) weights_[i] = addedRepeatedly(weights_[i], units_[p.alpha], times);
}

void TileSums::gather(int32_t count) {
    moveFields(blueAndRed_, count, sums_[0], sums_[2]);
    moveFields(greenAndAlpha_, count, sums_[1], sums_[3]);
    held_ = 0;
}

void TileSums::means(int32_t count, const int32_t* samples, int32_t most, Pixel* results) {
    gather(count);
    if (!units_ && most <= static_cast<int32_t>(MiddleByteQuotient::kLargestWeight))
        return divideBySamples(sums_, samples, count, results);
    for (int32_t i = 0; i < count; ++i)
        for (size_t c = 0; c < 4; ++c)
            results[i][c] = quotientByte(static_cast<int32_t>(sums_[c][i]),
                                         units_ && c < 3 ? weights_[i] : double(samples[i]));
}

uint8_t quotientByte(double sum, double divisor) { return static_cast<uint8_t>(truncate(sum / divisor)); }

}  // namespace krl
