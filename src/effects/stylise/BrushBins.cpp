#include "effects/stylise/BrushBins.h"

#include "core/ByteArithmetic.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

// The brightness in thousandths is a whole number that `float` holds. Its scale and the product are rounded
// three times, by less than 2^-16 of a bin each; the true brightness is the sum of three numbers that are
// rounded by less than 2^-16 together; and adding the error rounds by as much again.
KRL_VECTOR_LEVELS
bool mixSpan(const Pixel* __restrict pixels, int32_t count, float levelScale, Pixel* __restrict mixed,
             int32_t* __restrict doubts) {
    constexpr float kError = 0x1p-13f;
    const float scale = levelScale / 1000.0f;
    int32_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]), alpha = word >> 24;
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const float thousandths = float(red) * 299.0f + float(green) * 587.0f + float(blue) * 114.0f;
        const float level = thousandths * scale;
        const auto bin = static_cast<int32_t>(level + kError);
        doubts[i] = bin - static_cast<int32_t>(level - kError);
        any |= doubts[i];
        const auto scaled = [=](int32_t byte) { return dividedBy255(alpha * static_cast<uint32_t>(byte)); };
        storeWord(mixed[i],
                  scaled(blue) | scaled(green) << 8 | scaled(red) << 16 | static_cast<uint32_t>(bin) << 24);
    }
    return any != 0;
}

namespace {

template <int32_t kBrush>
KRL_VECTOR_LEVELS void challengeWith(const int8_t* __restrict counts, uint8_t bin,
                                     Winners& __restrict winners) {
    for (int32_t x = 0; x < Winners::kStrip; ++x) {
        int8_t count = counts[x];
        for (int32_t i = 1; i <= 2 * kBrush; ++i) count = static_cast<int8_t>(count + counts[x + i]);
        const bool wins = count > winners.count[x];
        winners.bin[x] = wins ? bin : winners.bin[x];
        winners.count[x] = wins ? count : winners.count[x];
    }
}

constexpr void (*kChallenges[])(const int8_t* __restrict, uint8_t, Winners& __restrict) = {
    challengeWith<1>, challengeWith<2>, challengeWith<3>, challengeWith<4>, challengeWith<kMostBrush>};

}  // namespace

void challenge(int32_t brush, const int8_t* counts, uint8_t bin, Winners& winners) {
    kChallenges[brush - 1](counts, bin, winners);
}

}  // namespace krl
