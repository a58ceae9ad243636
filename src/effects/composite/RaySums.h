#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "core/Numbers.h"
#include "krlimage/pixel.h"

namespace krl {

/// The four sums that a ray of light carries, one for each byte of a pixel. Every operation is on 32-bit
/// integers that wrap, and every return from floating point truncates.
class RaySums {
public:
#if defined(__SSE2__)
    RaySums() : sums_(_mm_setzero_si128()) {}
    RaySums(int32_t blue, int32_t green, int32_t red, int32_t alpha)
        : sums_(_mm_setr_epi32(blue, green, red, alpha)) {}

    void add(const RaySums& other) { sums_ = _mm_add_epi32(sums_, other.sums_); }
    /// `factor` times as much.
    void scale(double factor) { sums_ = scaled(factor); }
    void limit(int32_t most) { sums_ = limited(sums_, most); }
    /// Each sum times `factor`, at most 255; of what is below 0, the low byte.
    Pixel bytes(double factor) const {
        const __m128i low = _mm_and_si128(limited(scaled(factor), 255), _mm_set1_epi32(255));
        const __m128i words = _mm_packs_epi32(low, low);
        return std::bit_cast<Pixel>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    }
    /// The low 16 bits of each.
    std::array<uint16_t, 4> words() const {
        alignas(16) int32_t sums[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(sums), sums_);
        return {uint16_t(sums[0]), uint16_t(sums[1]), uint16_t(sums[2]), uint16_t(sums[3])};
    }
    bool operator==(const RaySums& other) const {
        return _mm_movemask_epi8(_mm_cmpeq_epi32(sums_, other.sums_)) == 0xFFFF;
    }
    /// Whether each sum is what it was `before`, or has grown beyond `level`.
    bool unchangedOrRisenAbove(int32_t level, const RaySums& before) const {
        const __m128i same = _mm_cmpeq_epi32(sums_, before.sums_);
        const __m128i risen = _mm_and_si128(_mm_cmpgt_epi32(sums_, before.sums_),
                                            _mm_cmpgt_epi32(sums_, _mm_set1_epi32(level)));
        return _mm_movemask_epi8(_mm_or_si128(same, risen)) == 0xFFFF;
    }

private:
    __m128i scaled(double factor) const {
        const __m128d factors = _mm_set1_pd(factor);
        const __m128d low = _mm_mul_pd(_mm_cvtepi32_pd(sums_), factors);
        const __m128d high = _mm_mul_pd(_mm_cvtepi32_pd(_mm_unpackhi_epi64(sums_, sums_)), factors);
        return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
    }
    static __m128i limited(__m128i sums, int32_t most) {
        const __m128i limits = _mm_set1_epi32(most), above = _mm_cmpgt_epi32(sums, limits);
        return _mm_or_si128(_mm_and_si128(above, limits), _mm_andnot_si128(above, sums));
    }

    __m128i sums_;
#else
    RaySums() = default;
    RaySums(int32_t blue, int32_t green, int32_t red, int32_t alpha) : sums_{blue, green, red, alpha} {}

    void add(const RaySums& other) {
        for (int c = 0; c < 4; ++c) sums_[c] = wrapAdd(sums_[c], other.sums_[c]);
    }
    void scale(double factor) {
        for (int32_t& sum : sums_) sum = truncate(sum * factor);
    }
    void limit(int32_t most) {
        for (int32_t& sum : sums_) sum = sum > most ? most : sum;
    }
    Pixel bytes(double factor) const {
        RaySums low = *this;
        low.scale(factor);
        low.limit(255);
        return {uint8_t(low.sums_[0]), uint8_t(low.sums_[1]), uint8_t(low.sums_[2]), uint8_t(low.sums_[3])};
    }
    std::array<uint16_t, 4> words() const {
        return {uint16_t(sums_[0]), uint16_t(sums_[1]), uint16_t(sums_[2]), uint16_t(sums_[3])};
    }
    bool operator==(const RaySums& other) const { return std::memcmp(sums_, other.sums_, sizeof sums_) == 0; }
    bool unchangedOrRisenAbove(int32_t level, const RaySums& before) const {
        for (int c = 0; c < 4; ++c)
            if (sums_[c] != before.sums_[c] && !(sums_[c] > before.sums_[c] && sums_[c] > level))
                return false;
        return true;
    }

private:
    int32_t sums_[4] = {};
#endif
};

}  // namespace krl
