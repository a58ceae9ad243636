#include "kernels/blend/BlendFunction.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/Batch.h"
#include "core/ByteArithmetic.h"
#include "core/VectorLevels.h"
#include "kernels/blend/ShortProducts.h"

namespace krl {

namespace {

constexpr size_t kModes = 18;
constexpr size_t kBatchBytes = 4 * kBatchPixels;

/// A pixel as one word, whatever type its memory has.
using Word [[gnu::may_alias]] = uint32_t;

// The loops below go byte by byte and, but for soft light, need no more than 16 bits for a step, so that the
// compiler makes the shortest lanes of them.

/// Twice the product below the middle, twice the screen above it.
constexpr uint16_t contrasted(bool below, uint16_t front, uint16_t behind) {
    const auto product = static_cast<uint16_t>(2 * front * behind),
               shade = static_cast<uint16_t>(2 * (255 - front) * (255 - behind) + 254);
    const uint16_t quotient = dividedBy255(below ? product : shade);
    return static_cast<uint16_t>(below ? quotient : 255 - quotient);
}

constexpr uint16_t excluded(uint16_t front, uint16_t behind) {
    const auto product = static_cast<uint16_t>(front * behind);
    const uint16_t quotient = dividedBy255(product);
    const bool odd = static_cast<uint16_t>(product - 255 * quotient) > 127;
    return static_cast<uint16_t>(front + behind - 2 * quotient - odd);
}

constexpr bool hasTable(BlendMode mode) { return mode >= BlendMode::Add && mode <= BlendMode::ColorDodge; }

/// The modes whose tables are short arithmetic.
constexpr bool isArithmetic(BlendMode mode) {
    switch (mode) {
        case BlendMode::Add:
        case BlendMode::Darken:
        case BlendMode::Multiply:
        case BlendMode::Screen:
        case BlendMode::Lighten:
        case BlendMode::HardLight:
        case BlendMode::Difference:
        case BlendMode::PinLight:
        case BlendMode::Overlay:
        case BlendMode::Exclusion:
        case BlendMode::SoftLight:
            return true;
        default:
            return false;
    }
}

template <BlendMode mode>
constexpr uint16_t blendedByte(uint16_t front, uint16_t behind) {
    if constexpr (mode == BlendMode::Add) return static_cast<uint16_t>(std::min(front + behind, 255));
    if constexpr (mode == BlendMode::Darken) return std::min(front, behind);
    if constexpr (mode == BlendMode::Multiply) return dividedBy255(static_cast<uint16_t>(front * behind));
    if constexpr (mode == BlendMode::Screen)
        return screenedByte(static_cast<uint8_t>(front), static_cast<uint8_t>(behind));
    if constexpr (mode == BlendMode::Lighten) return std::max(front, behind);
    if constexpr (mode == BlendMode::HardLight) return contrasted(front < 128, front, behind);
    if constexpr (mode == BlendMode::Difference)
        return static_cast<uint16_t>(std::max(front, behind) - std::min(front, behind));
    if constexpr (mode == BlendMode::PinLight)
        return front < 128 ? std::min(front, behind) : std::max(front, behind);
    if constexpr (mode == BlendMode::Overlay) return contrasted(behind < 128, front, behind);
    if constexpr (mode == BlendMode::Exclusion) return excluded(front, behind);
    if constexpr (mode == BlendMode::SoftLight) return softLitByte(front, behind);
    return front;
}

/// Whether the pair's entry in the tables is one less than its arithmetic.
template <BlendMode mode>
constexpr bool fallsShort(uint8_t front, uint8_t behind) {
    if constexpr (mode == BlendMode::Multiply) return isShortProduct(front, behind);
    if constexpr (mode == BlendMode::Overlay) return isShortProduct(front, behind) & (behind < 128);
    return false;
}
constexpr bool hasShortEntries(BlendMode mode) {
    return mode == BlendMode::Multiply || mode == BlendMode::Overlay;
}

/// 0 for every pair that falls short, as its product is a whole number of 255ths and its front one of 147,
/// 155, 171, 187 and 195; for others hardly ever, but for those with an end of the scale behind.
constexpr int16_t certainty(uint8_t front, uint8_t behind) {
    const auto product = static_cast<uint16_t>(front * behind);
    const auto rest = static_cast<uint16_t>((product + dividedBy255(product)) & 255);  // as 255 is -1
    return static_cast<int16_t>(rest | ((front - 147) & 0b11000111));
}
static_assert(std::all_of(kShortProducts.begin(), kShortProducts.end(),
                          [](BytePair pair) { return certainty(pair.front, pair.behind) == 0; }));

/// The guess: blends `count` bytes by arithmetic. Whether the tables may have another entry for any.
template <BlendMode mode>
KRL_VECTOR_LEVELS bool blendBytes(uint8_t* __restrict blended, const uint8_t* front, const uint8_t* behind,
                                  size_t count) {
    int16_t least = 1;
    for (size_t i = 0; i < count; ++i) {
        blended[i] = static_cast<uint8_t>(blendedByte<mode>(front[i], behind[i]));
        if constexpr (hasShortEntries(mode)) {
            const int16_t one = certainty(front[i], behind[i]);
            least = one < least ? one : least;
        }
    }
    return least <= 0;
}

/// The referee: takes 1 from the bytes whose entries fall short.
template <BlendMode mode>
KRL_VECTOR_LEVELS void shorten(uint8_t* __restrict blended, const uint8_t* front, const uint8_t* behind,
                               size_t count) {
    for (size_t i = 0; i < count; ++i)
        blended[i] = static_cast<uint8_t>(blended[i] - fallsShort<mode>(front[i], behind[i]));
}

void blendByTable(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                  const ByteSquare<uint8_t>& table) {
    for (size_t i = 0; i < count; i += 4)
        for (size_t c = i; c < i + 3; ++c) blended[c] = table[front[c]][behind[c]];
}

/// The blended colour bytes of a batch of `count` bytes, from those in front and those behind; alpha bytes
/// may become anything. Where entries fall short, a fast guess is followed by an exact referee if any byte is
/// in doubt.
template <BlendMode mode>
void blendBatch(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                const LookupTables& tables) {
    constexpr size_t kGuessedBytes = 256;  // few, so that few are settled for one in doubt
    if constexpr (!isArithmetic(mode))
        blendByTable(blended, front, behind, count, *blendTable(tables, mode));
    else if constexpr (!hasShortEntries(mode))
        blendBytes<mode>(blended, front, behind, count);
    else
        forEachBatch<kGuessedBytes>(count, [&](size_t i, size_t bytes) {
            if (blendBytes<mode>(blended + i, front + i, behind + i, bytes))
                shorten<mode>(blended + i, front + i, behind + i, bytes);
        });
}

/// Each pixel's alpha beside its three colour bytes, and 0 beside alpha.
KRL_VECTOR_LEVELS void spreadAlphas(uint8_t* __restrict alphas, const uint8_t* pixels, size_t pixelCount) {
    auto* spread = reinterpret_cast<Word*>(alphas);
    const auto* words = reinterpret_cast<const Word*>(pixels);
    for (size_t i = 0; i < pixelCount; ++i) {
        const uint32_t alpha = words[i] >> 24;
        spread[i] = alpha | alpha << 8 | alpha << 16;
    }
}

/// `(behind * (256 - a) + blended * a) >> 8` is `behind + (((blended - behind) * a) >> 8)` without a
/// negative number in between.
KRL_VECTOR_LEVELS void mixShift(uint8_t* pixels, const uint8_t* blended, const uint8_t* __restrict alphas,
                                size_t count) {
    for (size_t i = 0; i < count; ++i)
        pixels[i] = static_cast<uint8_t>(
            static_cast<uint16_t>(pixels[i] * (256 - alphas[i]) + blended[i] * alphas[i]) >> 8);
}

KRL_STREAM_LEVELS void copyColour(Pixel* pixels, const Pixel* front, size_t count) {
    auto* words = reinterpret_cast<Word*>(pixels);
    const auto* fronts = reinterpret_cast<const Word*>(front);
    for (size_t i = 0; i < count; ++i) words[i] = (words[i] & 0xFF000000u) | (fronts[i] & 0x00FFFFFFu);
}

template <BlendMode mode>
void shiftSpan(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    constexpr bool blends = mode != BlendMode::PinLight && hasTable(mode);
    if constexpr (mode == BlendMode::NoBlend) return copyColour(pixels, front, count);
    alignas(64) uint8_t blended[kBatchBytes];
    alignas(64) uint8_t alphas[kBatchBytes];
    forEachBatch(count, [&](size_t start, size_t size) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + start);
        const auto* before = reinterpret_cast<const uint8_t*>(front + start);
        if constexpr (blends) blendBatch<mode>(blended, before, behind, 4 * size, tables);
        spreadAlphas(alphas, before, size);
        mixShift(behind, blends ? blended : before, alphas, 4 * size);
    });
}

/// Colour as the blend sees it, scaled by its own alpha: `scaleByte[colour][alpha]`.
KRL_VECTOR_LEVELS void scaleByAlphas(uint8_t* __restrict scaled, const uint8_t* bytes,
                                     const uint8_t* __restrict alphas, size_t count) {
    for (size_t i = 0; i < count; ++i)
        scaled[i] = static_cast<uint8_t>(dividedBy255(static_cast<uint16_t>(bytes[i] * alphas[i])));
}

/// Whether in each of the pixels one alpha or the other is 255.
KRL_VECTOR_LEVELS bool oneIsOpaque(const uint8_t* behind, const uint8_t* front, size_t pixelCount) {
    const auto* words = reinterpret_cast<const Word*>(behind);
    const auto* fronts = reinterpret_cast<const Word*>(front);
    uint32_t least = ~uint32_t{0};
    for (size_t i = 0; i < pixelCount; ++i) least = std::min(least, std::max<uint32_t>(words[i], fronts[i]));
    return least >= 0xFF000000u;
}

/// Lays colours that are already blended over pixels of any alpha: `StraightOver`, with the tables' entries
/// computed in place, which vectors do faster than look-ups.
KRL_VECTOR_LEVELS void mixOverAny(uint8_t* pixels, const uint8_t* blended, const uint8_t* front,
                                  size_t count) {
    auto* words = reinterpret_cast<Word*>(pixels);
    const auto* colours = reinterpret_cast<const Word*>(blended);
    const auto* fronts = reinterpret_cast<const Word*>(front);
    for (size_t i = 0; i < count; ++i) {
        const uint32_t behind = words[i], colour = colours[i];
        const auto behindAlpha = static_cast<int32_t>(behind >> 24),
                   frontAlpha = static_cast<int32_t>(fronts[i] >> 24);
        const int32_t added = frontAlpha * (255 - behindAlpha) + 128;
        const int32_t alpha = behindAlpha + ((added + (added >> 8)) >> 8);
        const float behindWeight =
            static_cast<float>(behindAlpha) / 255.0f * static_cast<float>(255 - frontAlpha);
        const float reciprocal = 1.0f / static_cast<float>(alpha == 0 ? 1 : alpha);
        auto word = static_cast<uint32_t>(alpha) << 24;
        for (int shift = 0; shift < 24; shift += 8) {
            const auto under = static_cast<int32_t>(behind >> shift & 255),
                       over = static_cast<int32_t>(colour >> shift & 255);
            const double both = under * static_cast<double>(behindWeight) + over * frontAlpha;
            const double mixed = both * static_cast<double>(reciprocal);
            word |= static_cast<uint32_t>(static_cast<int32_t>(mixed < 255.0 ? mixed : 255.0)) << shift;
        }
        words[i] = alpha == 0 ? behind : word;
    }
}

/// Lays them over pixels of which one alpha or the other is 255: the weights are whole numbers over 255, and
/// the mix is one exact division.
KRL_VECTOR_LEVELS void mixOverOpaque(uint8_t* pixels, const uint8_t* blended,
                                     const uint8_t* __restrict alphas, size_t pixelCount) {
    for (size_t i = 0; i < 4 * pixelCount; ++i)
        pixels[i] = static_cast<uint8_t>(
            dividedBy255(static_cast<uint16_t>(pixels[i] * (255 - alphas[i]) + blended[i] * alphas[i])));
    auto* words = reinterpret_cast<Word*>(pixels);
    for (size_t i = 0; i < pixelCount; ++i) words[i] |= 0xFF000000u;
}

void mixOverBatch(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t pixelCount) {
    constexpr size_t kPixels = 64;  // the shorter, the more often one of the two is opaque throughout
    alignas(64) uint8_t alphas[4 * kPixels];
    forEachBatch<kPixels>(pixelCount, [&](size_t start, size_t size) {
        const size_t at = 4 * start;
        if (oneIsOpaque(pixels + at, front + at, size)) {
            spreadAlphas(alphas, front + at, size);
            mixOverOpaque(pixels + at, blended + at, alphas, size);
        } else {
            mixOverAny(pixels + at, blended + at, front + at, size);
        }
    });
}

/// The colours of a batch blended for the straight-alpha form, where `Add` adds blue and screens the rest.
template <BlendMode mode>
void blendForOver(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t pixelCount,
                  const LookupTables& tables) {
    blendBatch<mode>(blended, front, behind, 4 * pixelCount, tables);
    if constexpr (mode == BlendMode::Add) {
        alignas(64) uint8_t rest[kBatchBytes];
        blendBatch<BlendMode::Screen>(rest, front, behind, 4 * pixelCount, tables);
        for (size_t i = 0; i < 4 * pixelCount; i += 4) std::memcpy(blended + i + 1, rest + i + 1, 2);
    }
}

template <BlendMode mode>
void overSpan(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    constexpr bool blends = hasTable(mode);
    alignas(64) uint8_t alphas[kBatchBytes];
    alignas(64) uint8_t seen[kBatchBytes];
    alignas(64) uint8_t blended[kBatchBytes];
    forEachBatch(count, [&](size_t start, size_t size) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + start);
        const auto* before = reinterpret_cast<const uint8_t*>(front + start);
        if constexpr (blends) {
            spreadAlphas(alphas, behind, size);
            scaleByAlphas(seen, behind, alphas, 4 * size);
            blendForOver<mode>(blended, before, seen, size, tables);
        }
        mixOverBatch(behind, blends ? blended : before, before, size);
    });
}

template <size_t... modes>
constexpr std::array<BlendFunction, kModes> shiftSpans(std::index_sequence<modes...>) {
    return {shiftSpan<static_cast<BlendMode>(modes)>...};
}

template <size_t... modes>
constexpr std::array<BlendFunction, kModes> overSpans(std::index_sequence<modes...>) {
    return {overSpan<static_cast<BlendMode>(modes)>...};
}

}  // namespace

BlendFunction shiftBlendSpan(BlendMode mode) {
    static constexpr auto spans = shiftSpans(std::make_index_sequence<kModes>());
    return spans[static_cast<size_t>(mode)];
}

BlendFunction overBlendSpan(BlendMode mode) {
    static constexpr auto spans = overSpans(std::make_index_sequence<kModes>());
    return spans[static_cast<size_t>(mode)];
}

}  // namespace krl
