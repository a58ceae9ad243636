#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "warp/Sampler.h"

/// The whole-number road of `BilinearSampler`. A weight is a whole number of 2^-23, so a blend of two
/// bytes, `a + floor(weight * (b - a))`, is exact, and equals the truncated blend in floating point.
namespace krl {

#if defined(__SSE2__)

/// A weight as the vector blend takes it, in its upper 11 and lower 12 bits.
struct BlendWeight {
    __m128i upper, lower;

    explicit BlendWeight(int32_t weight)
        : upper(_mm_set1_epi32(weight >> 12 | 1 << 16)), lower(_mm_set1_epi16(int16_t(weight & 0xFFF))) {}
};

/// `floor(weight * d / 2^23)` for the eight 16-bit lanes of `d`, as the lower bits give their carry to
/// the upper ones; the four lanes of each half are two multiplications, by the upper bits and by 1.
inline __m128i weighed(__m128i d, const BlendWeight& weight) {
    const __m128i carry = _mm_mulhi_epi16(_mm_slli_epi16(d, 4), weight.lower);
    const __m128i low = _mm_madd_epi16(_mm_unpacklo_epi16(d, carry), weight.upper);
    const __m128i high = _mm_madd_epi16(_mm_unpackhi_epi16(d, carry), weight.upper);
    return _mm_packs_epi32(_mm_srai_epi32(low, 11), _mm_srai_epi32(high, 11));
}

/// Two neighbouring pixels, a lane for each byte.
inline __m128i loadPair(const Pixel* pixels) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)), _mm_setzero_si128());
}
inline __m128i loadOne(const Pixel* pixel) {
    int32_t word;
    std::memcpy(&word, pixel, sizeof word);
    return _mm_unpacklo_epi8(_mm_cvtsi32_si128(word), _mm_setzero_si128());
}

/// `a` moved toward `b` by `weight`, in every lane.
inline __m128i blendLanes(__m128i a, __m128i b, int32_t weight) {
    return _mm_add_epi16(a, weighed(_mm_sub_epi16(b, a), BlendWeight(weight)));
}

/// The left pixel of a pair moved toward the right one.
inline Pixel blendPair(__m128i pair, int32_t weight) {
    const __m128i blended = blendLanes(pair, _mm_srli_si128(pair, 8), weight);
    return std::bit_cast<Pixel>(_mm_cvtsi128_si32(_mm_packus_epi16(blended, blended)));
}

inline Pixel blendAlongRow(const Pixel* row, int32_t weight) { return blendPair(loadPair(row), weight); }

inline Pixel blendDownColumn(const Pixel* upper, const Pixel* lower, int32_t weight) {
    const __m128i blended = blendLanes(loadOne(upper), loadOne(lower), weight);
    return std::bit_cast<Pixel>(_mm_cvtsi128_si32(_mm_packus_epi16(blended, blended)));
}

inline Pixel blendSquare(const Pixel* upper, const Pixel* lower, int32_t yWeight, int32_t xWeight) {
    return blendPair(blendLanes(loadPair(upper), loadPair(lower), yWeight), xWeight);
}

#else

inline Pixel blendDownColumn(const Pixel* upper, const Pixel* lower, int32_t weight) {
    Pixel blended;
    for (size_t c = 0; c < 4; ++c) {
        const int32_t a = (*upper)[c], b = (*lower)[c];
        blended[c] = static_cast<uint8_t>(a + ((weight * (b - a)) >> 23));
    }
    return blended;
}

inline Pixel blendAlongRow(const Pixel* row, int32_t weight) { return blendDownColumn(row, row + 1, weight); }

inline Pixel blendSquare(const Pixel* upper, const Pixel* lower, int32_t yWeight, int32_t xWeight) {
    const Pixel columns[2] = {blendDownColumn(upper, lower, yWeight),
                              blendDownColumn(upper + 1, lower + 1, yWeight)};
    return blendAlongRow(columns, xWeight);
}

#endif

/// A coordinate from 1 upward as a whole number and a fraction of 2^-23.
struct SplitCoordinate {
    int32_t whole;
    int32_t fraction;

    explicit SplitCoordinate(float coordinate)
        : whole(static_cast<int32_t>(coordinate)),
          fraction(static_cast<int32_t>((coordinate - static_cast<float>(whole)) * 8388608.0f)) {}
};

template <ChannelTarget target>
inline void BilinearSampler<target>::operator()(Pixel& destination, float y, float x) const {
    if (!(inColumns(x) && inRows(y))) return general(destination, y, x);
    const SplitCoordinate column(x), row(y);
    const Pixel* upper = source_.row(row.whole) + column.whole;
    const Pixel* lower = source_.row(row.whole + 1) + column.whole;
    copyChannels<target>(destination, blendSquare(upper, lower, row.fraction, column.fraction));
}

template <ChannelTarget target>
inline void BilinearSampler<target>::alongRow(Pixel& destination, int32_t y, float x) const {
    if (!inColumns(x)) return general(destination, static_cast<float>(y), x);
    const SplitCoordinate column(x);
    copyChannels<target>(destination, blendAlongRow(source_.row(y) + column.whole, column.fraction));
}

template <ChannelTarget target>
inline void BilinearSampler<target>::downColumn(Pixel& destination, float y, int32_t x) const {
    if (!inRows(y)) return general(destination, y, static_cast<float>(x));
    const SplitCoordinate row(y);
    copyChannels<target>(destination, blendDownColumn(source_.row(row.whole) + x,
                                                      source_.row(row.whole + 1) + x, row.fraction));
}

}  // namespace krl
