#include "composite/BlendRun.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace krl {

namespace {

/// Pixels that are blended at once, so that what passes between the steps stays in the first cache.
constexpr size_t kChunk = 256;
constexpr size_t kModes = 18;

// Two pixels in eight 16-bit lanes, in the compilers' portable vector form: the products of two bytes
// below all fit.
using PairBytes [[gnu::vector_size(8)]] = uint8_t;
using PairLanes [[gnu::vector_size(16)]] = uint16_t;

PairLanes loadPair(const uint8_t* pixels) {
    PairBytes bytes;
    std::memcpy(&bytes, pixels, sizeof bytes);
    return __builtin_convertvector(bytes, PairLanes);
}

void storePair(uint8_t* pixels, PairLanes lanes) {
    const PairBytes bytes = __builtin_convertvector(lanes, PairBytes);
    std::memcpy(pixels, &bytes, sizeof bytes);
}

/// Each pixel's alpha in its three colour lanes, and 0 in its alpha lane.
PairLanes opacityLanes(PairLanes pair) {
    constexpr PairLanes colour{0xFFFF, 0xFFFF, 0xFFFF, 0, 0xFFFF, 0xFFFF, 0xFFFF, 0};
    return __builtin_shufflevector(pair, pair, 3, 3, 3, 3, 7, 7, 7, 7) & colour;
}

/// `lanes / 255` for lanes below 65535.
PairLanes dividedBy255(PairLanes lanes) { return (lanes + 1 + (lanes >> 8)) >> 8; }

/// The modes whose tables are plain arithmetic, by that arithmetic: the compiler turns it into vectors.
template <BlendMode mode>
constexpr bool kArithmetic = mode == BlendMode::Add || mode == BlendMode::Darken ||
                             mode == BlendMode::Lighten || mode == BlendMode::Difference;

template <BlendMode mode>
uint8_t blendedByArithmetic(uint8_t front, uint8_t behind) {
    if constexpr (mode == BlendMode::Add)
        return static_cast<uint8_t>(front > 255 - behind ? 255 : front + behind);
    else if constexpr (mode == BlendMode::Darken)
        return std::min(front, behind);
    else if constexpr (mode == BlendMode::Lighten)
        return std::max(front, behind);
    else
        return static_cast<uint8_t>(std::max(front, behind) - std::min(front, behind));
}

/// The blended colour bytes of a chunk, from those in front and those behind; alpha bytes are of no
/// account. Channels 1 and 2 go by `rest`, which differs from `table` for one mode alone.
void blendByTables(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                   const ByteSquare<uint8_t>& table, const ByteSquare<uint8_t>& rest) {
    for (size_t i = 0; i < 4 * count; i += 4) {
        blended[i] = table[front[i]][behind[i]];
        blended[i + 1] = rest[front[i + 1]][behind[i + 1]];
        blended[i + 2] = rest[front[i + 2]][behind[i + 2]];
    }
}

template <BlendMode mode>
void blendByArithmetic(uint8_t* __restrict blended, const uint8_t* front, const uint8_t* behind,
                       size_t count) {
    for (size_t i = 0; i < 4 * count; ++i) blended[i] = blendedByArithmetic<mode>(front[i], behind[i]);
}

/// `(behind * (256 - a) + blended * a) >> 8` is `behind + (((blended - behind) * a) >> 8)` without a
/// negative number in between.
void mixShift(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count) {
    size_t i = 0;
    for (; i + 2 <= count; i += 2, pixels += 8, blended += 8, front += 8) {
        const PairLanes opacity = opacityLanes(loadPair(front));
        storePair(pixels, (loadPair(pixels) * (256 - opacity) + loadPair(blended) * opacity) >> 8);
    }
    if (i < count) {
        const uint32_t opacity = front[3];
        for (size_t c = 0; c < 3; ++c)
            pixels[c] = static_cast<uint8_t>((pixels[c] * (256 - opacity) + blended[c] * opacity) >> 8);
    }
}

template <BlendMode mode>
void shiftRun(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    if constexpr (mode == BlendMode::NoBlend) {
        for (size_t i = 0; i < count; ++i)
            pixels[i] = {front[i].blue, front[i].green, front[i].red, pixels[i].alpha};
        return;
    }
    alignas(16) uint8_t blended[4 * kChunk];
    for (size_t done = 0; done < count; done += kChunk) {
        const size_t chunk = std::min(kChunk, count - done);
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        const ByteSquare<uint8_t>* table = mode == BlendMode::PinLight ? nullptr : blendTable(tables, mode);
        if constexpr (kArithmetic<mode>)
            blendByArithmetic<mode>(blended, before, behind, chunk);
        else if (table)
            blendByTables(blended, before, behind, chunk, *table, *table);
        mixShift(behind, table ? blended : before, before, chunk);
    }
}

/// Colour as the blend sees it, scaled by its own alpha: `scaleByte[colour][alpha]`.
void scaleByAlpha(uint8_t* scaled, const uint8_t* pixels, size_t count) {
    for (size_t i = 0; i + 2 <= count; i += 2) {
        const PairLanes pair = loadPair(pixels + 4 * i);
        storePair(scaled + 4 * i, dividedBy255(pair * opacityLanes(pair)));
    }
    if (count % 2) {
        const uint8_t* last = pixels + 4 * (count - 1);
        for (size_t c = 0; c < 3; ++c)
            scaled[4 * (count - 1) + c] = static_cast<uint8_t>(last[c] * last[3] / 255);
    }
}

/// Lays a colour that is already blended over one pixel.
void mixOver(uint8_t* pixel, const uint8_t* blended, uint8_t frontAlpha, const LookupTables& tables) {
    const StraightOver over(tables, pixel[3], frontAlpha);
    if (over.alpha() == 0) return;
    for (size_t c = 0; c < 3; ++c) pixel[c] = over.mix(pixel[c], blended[c]);
    pixel[3] = over.alpha();
}

/// Where either alpha is 255 the weights are whole numbers over 255, and the mix is one exact division.
void mixOverRun(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count,
                const LookupTables& tables) {
    size_t i = 0;
    for (; i + 2 <= count; i += 2, pixels += 8, blended += 8, front += 8) {
        const bool whole = std::max(pixels[3], front[3]) == 255 && std::max(pixels[7], front[7]) == 255;
        if (whole) {
            const PairLanes opacity = opacityLanes(loadPair(front));
            const PairLanes mixed = loadPair(pixels) * (255 - opacity) + loadPair(blended) * opacity;
            storePair(pixels, dividedBy255(mixed));
            pixels[3] = pixels[7] = 255;
        } else {
            mixOver(pixels, blended, front[3], tables);
            mixOver(pixels + 4, blended + 4, front[7], tables);
        }
    }
    if (i < count) mixOver(pixels, blended, front[3], tables);
}

template <BlendMode mode>
void overRun(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    alignas(16) uint8_t seen[4 * kChunk];
    alignas(16) uint8_t blended[4 * kChunk];
    const ByteSquare<uint8_t>* table = blendTable(tables, mode);
    for (size_t done = 0; done < count; done += kChunk) {
        const size_t chunk = std::min(kChunk, count - done);
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        if (table) {
            scaleByAlpha(seen, behind, chunk);
            if constexpr (kArithmetic<mode> && mode != BlendMode::Add)
                blendByArithmetic<mode>(blended, before, seen, chunk);
            else
                blendByTables(blended, before, seen, chunk, *table,
                              mode == BlendMode::Add ? tables.blendScreen : *table);
        }
        mixOverRun(behind, table ? blended : before, before, chunk, tables);
    }
}

template <size_t... modes>
constexpr std::array<BlendRun, kModes> shiftRuns(std::index_sequence<modes...>) {
    return {shiftRun<static_cast<BlendMode>(modes)>...};
}

template <size_t... modes>
constexpr std::array<BlendRun, kModes> overRuns(std::index_sequence<modes...>) {
    return {overRun<static_cast<BlendMode>(modes)>...};
}

}  // namespace

BlendRun shiftBlendRun(BlendMode mode) {
    static constexpr auto runs = shiftRuns(std::make_index_sequence<kModes>());
    return runs[static_cast<size_t>(mode)];
}

BlendRun overBlendRun(BlendMode mode) {
    static constexpr auto runs = overRuns(std::make_index_sequence<kModes>());
    return runs[static_cast<size_t>(mode)];
}

}  // namespace krl
