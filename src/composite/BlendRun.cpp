#include "composite/BlendRun.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "composite/PixelsBeside.h"
#include "core/Clones.h"

namespace krl {

namespace {

constexpr size_t kModes = 18;

// Four pixels in the compilers' portable vector form: as bytes, and as two halves of 16-bit lanes, which
// hold every product of two bytes below.
using QuadBytes [[gnu::vector_size(16)]] = uint8_t;
using PairLanes [[gnu::vector_size(16)]] = uint16_t;
static_assert(std::endian::native == std::endian::little);

constexpr QuadBytes kAlphaBytes{0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255};

/// A pixel as one word, whatever type its memory has.
using Word [[gnu::may_alias]] = uint32_t;

struct Quad {
    PairLanes low, high;
};

QuadBytes loadBytes(const uint8_t* pixels) {
    QuadBytes bytes;
    std::memcpy(&bytes, pixels, sizeof bytes);
    return bytes;
}

void storeBytes(uint8_t* pixels, QuadBytes bytes) { std::memcpy(pixels, &bytes, sizeof bytes); }

Quad widen(QuadBytes bytes) {
    const QuadBytes zero{};
    return {std::bit_cast<PairLanes>(
                __builtin_shufflevector(bytes, zero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23)),
            std::bit_cast<PairLanes>(__builtin_shufflevector(bytes, zero, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                                             28, 13, 29, 14, 30, 15, 31))};
}

/// Lanes to bytes; they are below 256.
QuadBytes narrow(Quad quad) {
    return __builtin_shufflevector(std::bit_cast<QuadBytes>(quad.low), std::bit_cast<QuadBytes>(quad.high), 0,
                                   2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

/// Each pixel's alpha in its three colour lanes, and 0 in its alpha lane.
PairLanes opacityLanes(PairLanes pair) {
    constexpr PairLanes colour{0xFFFF, 0xFFFF, 0xFFFF, 0, 0xFFFF, 0xFFFF, 0xFFFF, 0};
    return __builtin_shufflevector(pair, pair, 3, 3, 3, 3, 7, 7, 7, 7) & colour;
}

/// `lanes / 255` for lanes below 65535.
PairLanes dividedBy255(PairLanes lanes) { return (lanes + 1 + (lanes >> 8)) >> 8; }

/// Runs `perQuad` on every four pixels and `perPixel` on those that are left, both by byte offset.
template <class PerQuad, class PerPixel>
void forEachQuad(size_t count, PerQuad&& perQuad, PerPixel&& perPixel) {
    size_t i = 0;
    for (; i + 4 <= count; i += 4) perQuad(4 * i);
    for (; i < count; ++i) perPixel(4 * i);
}

/// `2 * product / 255`, rounded down, for products of two bytes.
PairLanes doubled(PairLanes product) {
    const PairLanes quotient = dividedBy255(product), rest = product - 255 * quotient;
    return 2 * quotient + ((127 - rest) >> 15);  // the top bit is set where the rest is above 127
}

// Lanes of bytes compare as signed ones, for which there are instructions everywhere.
using SignedLanes [[gnu::vector_size(16)]] = int16_t;
PairLanes darker(PairLanes front, PairLanes behind) {
    const auto f = std::bit_cast<SignedLanes>(front), b = std::bit_cast<SignedLanes>(behind);
    return std::bit_cast<PairLanes>(f < b ? f : b);
}
PairLanes lighter(PairLanes front, PairLanes behind) {
    const auto f = std::bit_cast<SignedLanes>(front), b = std::bit_cast<SignedLanes>(behind);
    return std::bit_cast<PairLanes>(f > b ? f : b);
}
PairLanes added(PairLanes front, PairLanes behind) { return darker(front + behind, PairLanes{} + 255); }
PairLanes screened(PairLanes front, PairLanes behind) {
    return 255 - dividedBy255((255 - front) * (255 - behind) + 254);
}

/// The modes whose tables are exact arithmetic that vectors do faster than they look up. In some of the
/// others entries fall one short of it, and the rest take longer steps.
template <BlendMode mode>
constexpr bool kArithmetic =
    mode == BlendMode::Add || mode == BlendMode::Darken || mode == BlendMode::Screen ||
    mode == BlendMode::Lighten || mode == BlendMode::Difference || mode == BlendMode::PinLight ||
    mode == BlendMode::Exclusion;

/// A mode by its arithmetic. `uneven` is `Add` as the straight-alpha form has it.
template <BlendMode mode, bool uneven>
PairLanes blendedLanes(PairLanes front, PairLanes behind) {
    if constexpr (mode == BlendMode::Add) {
        constexpr PairLanes blue{0xFFFF, 0, 0, 0, 0xFFFF, 0, 0, 0};
        if constexpr (!uneven) return added(front, behind);
        return (added(front, behind) & blue) | (screened(front, behind) & ~blue);
    } else if constexpr (mode == BlendMode::Darken) {
        return darker(front, behind);
    } else if constexpr (mode == BlendMode::Screen) {
        return screened(front, behind);
    } else if constexpr (mode == BlendMode::Lighten) {
        return lighter(front, behind);
    } else if constexpr (mode == BlendMode::Difference) {
        return lighter(front, behind) - darker(front, behind);
    } else if constexpr (mode == BlendMode::PinLight) {
        return front < 128 ? darker(front, behind) : lighter(front, behind);
    } else {
        return front + behind - doubled(front * behind);
    }
}

/// The blended colour bytes of a chunk, from those in front and those behind; alpha bytes are of no
/// account. Channels 1 and 2 go by `rest`, which differs from `table` where `uneven`.
template <BlendMode mode, bool uneven>
void blendChunk(uint8_t* blended, const uint8_t* front, const uint8_t* behind, size_t count,
                const ByteSquare<uint8_t>& table, const ByteSquare<uint8_t>& rest) {
    const auto byTables = [&](size_t at) {
        blended[at] = table[front[at]][behind[at]];
        blended[at + 1] = rest[front[at + 1]][behind[at + 1]];
        blended[at + 2] = rest[front[at + 2]][behind[at + 2]];
    };
    if constexpr (kArithmetic<mode>) {
        const auto byArithmetic = [&](size_t at) {
            const Quad f = widen(loadBytes(front + at)), b = widen(loadBytes(behind + at));
            storeBytes(blended + at, narrow({blendedLanes<mode, uneven>(f.low, b.low) & 255,
                                             blendedLanes<mode, uneven>(f.high, b.high) & 255}));
        };
        forEachQuad(count, byArithmetic, byTables);
    } else {
        for (size_t at = 0; at < 4 * count; at += 4) byTables(at);
    }
}

/// `(behind * (256 - a) + blended * a) >> 8` is `behind + (((blended - behind) * a) >> 8)` without a
/// negative number in between.
void mixShift(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count) {
    const auto mixed = [](PairLanes behind, PairLanes before, PairLanes opacity) {
        return (behind * (256 - opacity) + before * opacity) >> 8;
    };
    forEachQuad(
        count,
        [&](size_t at) {
            const Quad behind = widen(loadBytes(pixels + at)), before = widen(loadBytes(blended + at)),
                       opacity = widen(loadBytes(front + at));
            storeBytes(pixels + at, narrow({mixed(behind.low, before.low, opacityLanes(opacity.low)),
                                            mixed(behind.high, before.high, opacityLanes(opacity.high))}));
        },
        [&](size_t at) {
            const int32_t opacity = front[at + 3];
            for (size_t c = at; c < at + 3; ++c)
                pixels[c] = static_cast<uint8_t>((pixels[c] * (256 - opacity) + blended[c] * opacity) >> 8);
        });
}

void copyColour(uint8_t* pixels, const uint8_t* front, size_t count) {
    forEachQuad(
        count,
        [&](size_t at) {
            storeBytes(pixels + at,
                       (loadBytes(pixels + at) & kAlphaBytes) | (loadBytes(front + at) & ~kAlphaBytes));
        },
        [&](size_t at) { std::memcpy(pixels + at, front + at, 3); });
}

template <BlendMode mode>
void shiftRun(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    if constexpr (mode == BlendMode::NoBlend) {
        copyColour(reinterpret_cast<uint8_t*>(pixels), reinterpret_cast<const uint8_t*>(front), count);
        return;
    }
    alignas(16) uint8_t blended[4 * kChunkPixels];
    forEachChunk(count, [&](size_t done, size_t chunk) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        const ByteSquare<uint8_t>* table = mode == BlendMode::PinLight ? nullptr : blendTable(tables, mode);
        if (table) blendChunk<mode, false>(blended, before, behind, chunk, *table, *table);
        mixShift(behind, table ? blended : before, before, chunk);
    });
}

/// Colour as the blend sees it, scaled by its own alpha: `scaleByte[colour][alpha]`.
void scaleByAlpha(uint8_t* scaled, const uint8_t* pixels, size_t count) {
    forEachQuad(
        count,
        [&](size_t at) {
            const Quad quad = widen(loadBytes(pixels + at));
            storeBytes(scaled + at, narrow({dividedBy255(quad.low * opacityLanes(quad.low)),
                                            dividedBy255(quad.high * opacityLanes(quad.high))}));
        },
        [&](size_t at) {
            for (size_t c = at; c < at + 3; ++c)
                scaled[c] = static_cast<uint8_t>(pixels[c] * pixels[at + 3] / 255);
        });
}

/// Whether in each of four pixels one alpha or the other is 255.
bool oneIsOpaque(QuadBytes behind, QuadBytes front) {
    constexpr uint64_t alphas = 0xFF000000FF000000;
    using Halves [[gnu::vector_size(16)]] = uint64_t;
    const auto full = std::bit_cast<Halves>((behind == 255) | (front == 255));
    return (full[0] & full[1] & alphas) == alphas;
}

/// Lays colours that are already blended over pixels of any alpha: `StraightOver`, with the tables' entries
/// worked out in place, which vectors do faster than they look up.
KRL_WIDE_CLONES void mixOverAny(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count) {
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
void mixOverOpaque(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count) {
    const auto mixed = [](PairLanes behind, PairLanes before, PairLanes opacity) {
        return dividedBy255(behind * (255 - opacity) + before * opacity);
    };
    for (size_t at = 0; at < 4 * count; at += 16) {
        const Quad behind = widen(loadBytes(pixels + at)), before = widen(loadBytes(blended + at)),
                   opacity = widen(loadBytes(front + at));
        const Quad colour{mixed(behind.low, before.low, opacityLanes(opacity.low)),
                          mixed(behind.high, before.high, opacityLanes(opacity.high))};
        storeBytes(pixels + at, narrow(colour) | kAlphaBytes);
    }
}

void mixOverRun(uint8_t* pixels, const uint8_t* blended, const uint8_t* front, size_t count) {
    constexpr size_t kBlock = 32;
    for (size_t done = 0; done < count; done += kBlock) {
        const size_t at = 4 * done, block = std::min(kBlock, count - done);
        bool opaque = block % 4 == 0;
        for (size_t i = at; opaque && i < at + 4 * block; i += 16)
            opaque = oneIsOpaque(loadBytes(pixels + i), loadBytes(front + i));
        (opaque ? mixOverOpaque : mixOverAny)(pixels + at, blended + at, front + at, block);
    }
}

template <BlendMode mode>
void overRun(Pixel* pixels, const Pixel* front, size_t count, const LookupTables& tables) {
    alignas(16) uint8_t seen[4 * kChunkPixels];
    alignas(16) uint8_t blended[4 * kChunkPixels];
    const ByteSquare<uint8_t>* table = blendTable(tables, mode);
    forEachChunk(count, [&](size_t done, size_t chunk) {
        auto* behind = reinterpret_cast<uint8_t*>(pixels + done);
        const auto* before = reinterpret_cast<const uint8_t*>(front + done);
        if (table) {
            scaleByAlpha(seen, behind, chunk);
            blendChunk<mode, true>(blended, before, seen, chunk, *table,
                                   mode == BlendMode::Add ? tables.blendScreen : *table);
        }
        mixOverRun(behind, table ? blended : before, before, chunk);
    });
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
