#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

#include "krlimage/pixel.h"

#if defined(__SSE2__)
#include <emmintrin.h>

namespace krl {

/// A factor from 0 to below 1 that is a whole number of 2^32nds: its product with a 16-bit number needs no
/// rounding before it is truncated.
class WholeShare {
public:
    static std::optional<WholeShare> of(float factor) {
        const double parts = double(factor) * 4294967296.0;
        if (!(factor >= 0 && factor < 1) || parts != std::floor(parts)) return std::nullopt;
        return WholeShare(static_cast<uint32_t>(parts));
    }

    /// Eight products. The low half of the factor adds what its product carries into the upper 16 bits.
    __m128i of(__m128i words) const {
        const __m128i lowest = _mm_mulhi_epu16(words, low_);
        const __m128i middle = _mm_mullo_epi16(words, high_), sum = _mm_add_epi16(middle, lowest);
        const __m128i next = _mm_add_epi16(_mm_mulhi_epu16(words, high_), _mm_set1_epi16(1));
        const __m128i noCarry = _mm_cmpeq_epi16(_mm_subs_epu16(middle, sum), _mm_setzero_si128());
        return _mm_add_epi16(next, noCarry);
    }

private:
    explicit WholeShare(uint32_t parts)
        : low_(_mm_set1_epi16(static_cast<short>(parts & 0xFFFF))),
          high_(_mm_set1_epi16(static_cast<short>(parts >> 16))) {}

    __m128i low_, high_;
};

/// Multiplication of bytes by a table's factor in 16 bits.
class ByteScale {
public:
    /// The scale that gives the table, if one does; results are at most `most`.
    static std::optional<ByteScale> of(const int32_t (&table)[256], double factor, int32_t most) {
        if (!(factor > 0) || table[255] > most) return std::nullopt;
        const int shift = 15 - std::ilogb(factor);
        if (shift < 8 || shift > 31) return std::nullopt;
        const auto multiplier = static_cast<uint32_t>(std::ldexp(factor, shift));
        for (uint32_t m = multiplier; m <= multiplier + 1 && m <= 0xFFFF; ++m) {
            bool gives = true;
            for (uint32_t i = 0; i < 256; ++i)
                gives = gives && i * m >> shift == static_cast<uint32_t>(table[i]);
            if (gives) return ByteScale(m, shift);
        }
        return std::nullopt;
    }

    /// The scaled bytes of two pixels.
    __m128i of(const Pixel* first, const Pixel* second) const {
        int32_t words[2];
        std::memcpy(words, first, sizeof *first);
        std::memcpy(words + 1, second, sizeof *second);
        const __m128i bytes = _mm_unpacklo_epi32(_mm_cvtsi32_si128(words[0]), _mm_cvtsi32_si128(words[1]));
        const __m128i times256 = _mm_unpacklo_epi8(_mm_setzero_si128(), bytes);
        return _mm_srl_epi16(_mm_mulhi_epu16(times256, multiplier_), shift_);
    }

private:
    ByteScale(uint32_t multiplier, int shift)
        : multiplier_(_mm_set1_epi16(static_cast<short>(multiplier))), shift_(_mm_cvtsi32_si128(shift - 8)) {}

    __m128i multiplier_, shift_;
};

/// What every ray does after it has run in: it adds the light it meets, up to `kMost`, and fades.
struct RayStep {
    static constexpr int32_t kMost = 25500;
    static constexpr int32_t kMostLight = 0x7FFF - kMost;

    ByteScale light;
    WholeShare falloff, share;

    /// The step in 16 bits, where it is exact.
    static std::optional<RayStep> of(const int32_t (&bright)[256], float strength, float falloff,
                                     float share) {
        const auto light = ByteScale::of(bright, strength, kMostLight);
        const auto left = WholeShare::of(falloff), part = WholeShare::of(share);
        if (!light || !left || !part) return std::nullopt;
        return RayStep{*light, *left, *part};
    }
};

/// Four rays side by side, which wait for one another's arithmetic no longer than for their own.
class FourRays {
public:
    static constexpr int32_t kRays = 4;
    /// How many steps ahead pixels are fetched: lists of places are so much longer than the walk.
    static constexpr int32_t kSoon = 48;

    /// Ray `ray` goes on with four sums, each at most `RayStep::kMost`, at the pixels `places` of a source.
    void set(int32_t ray, const std::array<uint16_t, 4>& sums, const int32_t* places) {
        std::memcpy(&sums_[ray / 2][ray % 2 * 4], sums.data(), sizeof sums);
        places_[ray] = places;
    }

    /// Takes `steps` steps and writes what each ray shines by at each: the rays' colours side by side.
    void walk(const Pixel* source, const RayStep& step, int32_t steps, Pixel* colours) const {
        __m128i sums[2];
        std::memcpy(sums, sums_, sizeof sums);
        const __m128i most = _mm_set1_epi16(RayStep::kMost);
        for (int32_t i = 0; i < steps; ++i, colours += kRays) {
            __m128i shining[2];
            __builtin_prefetch(source + places_[0][i + kSoon]);
            for (int pair = 0; pair < 2; ++pair) {
                const __m128i light =
                    step.light.of(source + places_[2 * pair][i], source + places_[2 * pair + 1][i]);
                const __m128i sum = _mm_min_epi16(_mm_add_epi16(sums[pair], light), most);
                shining[pair] = step.share.of(sum);
                sums[pair] = step.falloff.of(sum);
            }
            _mm_storeu_si128(reinterpret_cast<__m128i*>(colours), _mm_packus_epi16(shining[0], shining[1]));
        }
    }

private:
    uint16_t sums_[2][8] = {};
    const int32_t* places_[kRays] = {};
};

}  // namespace krl

#else

namespace krl {

/// Without vectors of bytes each ray walks alone.
struct RayStep {
    static constexpr int32_t kMost = 25500;

    static std::optional<RayStep> of(const int32_t (&)[256], float, float, float) { return std::nullopt; }
};

class FourRays {
public:
    static constexpr int32_t kRays = 4, kSoon = 48;

    void set(int32_t, const std::array<uint16_t, 4>&, const int32_t*) {}
    void walk(const Pixel*, const RayStep&, int32_t, Pixel*) const {}
};

}  // namespace krl

#endif
