#include "kernels/blend/BlendFunction.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/ByteArithmetic.h"
#include "core/VectorLevels.h"
#include "kernels/blend/BlockPixels.h"

namespace krl {

namespace {

constexpr size_t kModes = 18;
constexpr size_t kChunkBytes = 4 * kBatchPixels;

/// A pixel as one word, whatever type its memory has.
using Word [[gnu::may_alias]] = uint32_t;

// The loops below go byte by byte and need no more than 16 bits for a step, so that the compiler makes the
// shortest lanes of them.

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
    return front;
}

/// The modes with entries, at most a dozen, that rounding keeps one below their arithmetic.
constexpr bool fallsShort(BlendMode mode) {
    return mode == BlendMode::Multiply || mode == BlendMode::Overlay;
}

/// 0 for every pair whose entry falls short, as its product is a whole number of 255ths and its front one of
/// 147, 155, 171, 187 and 195; hardly ever 0 for others but those with an end of the scale behind.
constexpr int16_t doubt(uint8_t front, uint8_t behind) {
    const auto product = static_cast<uint16_t>(front * behind);
    const auto rest = static_cast<uint16_t>((product + dividedBy255(product)) & 255);  // as 255 is -1
    return static_cast<int16_t>(rest | ((front - 147) & 0b11000111));
}

/// Blends `count` bytes. False where the tables may differ.
template <BlendMode mode>
KRL_VECTOR_LEVELS bool blendBytes(uint8_t* __restrict blended, const uint8_t* front, const uint8_t* behind,
                                  size_t count) {
    int16_t least = 1;
    for (size_t i = 0; i < count; ++i) {
        blended[i] = static_cast<uint8_t>(blendedByte<mode>(front[i], behind[i]));
        if constexpr (fallsShort(mode)) {
            const int16_t one = doubt(front[i], behind[i]);
            least = one < least ? one : least;
        }
    }
    return least > 0;
}

/// Whether the tables do differ, or so it seems: ends of the scale are no reason, and black is common.
KRL_VECTOR_LEVELS bool areDoubtful(const uint8_t* front, const uint8_t* behind, size_t count) {
    uint8_t doubts = 0;
    for (size_t i = 0; i < count; ++i) {
        const auto end = static_cast<uint8_t>(((behind[i] + 1) & 255) < 2);
        doubts |= static_cast<uint8_t>((doubt(front[i], behind[i]) | end) == 0);
    }
    return doubts;
}

void blendByTable(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                  const ByteSquare<uint8_t>& table) {
    for (size_t i = 0; i < count; i += 4)
        for (size_t c = i; c < i + 3; ++c) blended[c] = table[front[c]][behind[c]];
}

/// The blended colour bytes of a chunk of `count` bytes, from those in front and those behind. Alpha bytes
/// are of no account.
template <BlendMode mode>
void blendBatch(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                const LookupTables& tables) {
    constexpr size_t kStep = fallsShort(mode) ? 256 : kChunkBytes;  // the less, the less is done again
    const ByteSquare<uint8_t>& table = *blendTable(tables, mode);
    if constexpr (!isArithmetic(mode)) return blendByTable(blended, front, behind, count, table);
    for (size_t i = 0; i < count; i += kStep) {
        const size_t step = std::min(kStep, count - i);
        if (!blendBytes<mode>(blended + i, front + i, behind + i, step) &&
            areDoubtful(front + i, behind + i, step))
            blendByTable(blended + i, front + i, behind + i, step, table);
    }
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
    alignas(64) uint8_t blended[kChunkBytes];
    alignas(64) uint8_t alphas[kChunkBytes];
    forEachBatch(count, [&](size_t done, size_t chunk) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        if constexpr (blends) blendBatch<mode>(blended, before, behind, 4 * chunk, tables);
        spreadAlphas(alphas, before, chunk);
        mixShift(behind, blends ? blended : before, alphas, 4 * chunk);
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
/// worked out in place, which vectors do faster than they look up.
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
    constexpr size_t kBlock = 64;
    alignas(64) uint8_t alphas[4 * kBlock];
    for (size_t done = 0; done < pixelCount; done += kBlock) {
        const size_t at = 4 * done, block = std::min(kBlock, pixelCount - done);
        if (oneIsOpaque(pixels + at, front + at, block)) {
            spreadAlphas(alphas, front + at, block);
            mixOverOpaque(pixels + at, blended + at, alphas, block);
        } else {
            mixOverAny(pixels + at, blended + at, front + at, block);
        }
    }
}

/// The colours of a chunk blended for the straight-alpha form, where `Add` adds blue and screens the rest.
template <BlendMode mode>
void blendForOver(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t pixelCount,
                  const LookupTables& tables) {
    blendBatch<mode>(blended, front, behind, 4 * pixelCount, tables);
    if constexpr (mode == BlendMode::Add) {
        alignas(64) uint8_t rest[kChunkBytes];
        blendBatch<BlendMode::Screen>(rest, front, behind, 4 * pixelCount, tables);
        for (size_t i = 0; i < 4 * pixelCount; i += 4) std::memcpy(blended + i + 1, rest + i + 1, 2);
    }
}

template <BlendMode mode>
void overSpan(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    constexpr bool blends = hasTable(mode);
    alignas(64) uint8_t alphas[kChunkBytes];
    alignas(64) uint8_t seen[kChunkBytes];
    alignas(64) uint8_t blended[kChunkBytes];
    forEachBatch(count, [&](size_t done, size_t chunk) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        if constexpr (blends) {
            spreadAlphas(alphas, behind, chunk);
            scaleByAlphas(seen, behind, alphas, 4 * chunk);
            blendForOver<mode>(blended, before, seen, chunk, tables);
        }
        mixOverBatch(behind, blends ? blended : before, before, chunk);
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
    static constexpr auto runs = shiftSpans(std::make_index_sequence<kModes>());
    return runs[static_cast<size_t>(mode)];
}

BlendFunction overBlendSpan(BlendMode mode) {
    static constexpr auto runs = overSpans(std::make_index_sequence<kModes>());
    return runs[static_cast<size_t>(mode)];
}

}  // namespace krl
