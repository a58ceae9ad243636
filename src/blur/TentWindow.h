#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "blur/ByteQuotient.h"
#include "core/Numbers.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// The moving tent: what one step along a line costs and keeps, for one lane or many side by side.
///
/// A tent of half-width r weighs the sample at distance i from its centre by r + 1 - |i|. Going one
/// sample further changes its sum by a slope, and the slope by the second difference
/// `entering - 2 * centre + leaving`. So a lane keeps two numbers, whatever r is. Samples before the
/// first and after the last of a line are those two, repeated without end.
namespace krl::tent {

/// No window is wider to a side than this: its sums still fit 64 bits, and on any picture both ends
/// of a line have long come to weigh the same.
inline constexpr int32_t kWidest = 100'000'000;

/// Half-width of the window for a caller's `radius`: 0.72 of it, rounded half away from zero.
inline int32_t halfWidth(int32_t radius) {
    const double scaled = radius * 0.72;
    return std::min(truncate(scaled >= 0 ? scaled + 0.5 : scaled - 0.5), kWidest);
}

/// Sum of the weights of a window.
constexpr int64_t weightOf(int32_t halfWidth) { return (halfWidth + int64_t{1}) * (halfWidth + int64_t{1}); }

/// Bytes, whose sums are divided by `Quotient`.
template <class Quotient>
class Bytes {
public:
    using Sample = uint8_t;
    using Sum = typename Quotient::Sum;

    explicit Bytes(int32_t halfWidth) : divide_(static_cast<uint64_t>(weightOf(halfWidth))) {}
    uint8_t quotient(Sum sum) const { return divide_(sum); }
    const Quotient& division() const { return divide_; }

private:
    Quotient divide_;
};

/// Bytes under windows up to `kWidestNarrow`, whose sums fit 32 bits, and under wider ones.
using NarrowBytes = Bytes<ByteQuotient>;
using WideBytes = Bytes<WideByteQuotient>;
inline constexpr int32_t kWidestNarrow = 2895;
static_assert(weightOf(kWidestNarrow) <= int64_t{ByteQuotient::kLargestWeight});

/// Any 32-bit integers; the quotient is truncated toward zero.
class SignedWords {
public:
    using Sample = int32_t;
    using Sum = uint64_t;

    explicit SignedWords(int32_t halfWidth) : weight_(weightOf(halfWidth)) {}
    int32_t quotient(uint64_t sum) const { return static_cast<int32_t>(static_cast<int64_t>(sum) / weight_); }

private:
    int64_t weight_;
};

/// One step of lanes side by side: writes their means and moves sums and slopes on. The lanes'
/// memory is told not to overlap, as more pointers than these the compiler does not compare.
template <class Arithmetic>
inline void stepLanes(const Arithmetic& arithmetic, typename Arithmetic::Sum* __restrict sums,
                      typename Arithmetic::Sum* __restrict slopes,
                      typename Arithmetic::Sample* __restrict means,
                      const typename Arithmetic::Sample* entering, const typename Arithmetic::Sample* centre,
                      const typename Arithmetic::Sample* leaving, int lanes) {
    using Sum = typename Arithmetic::Sum;
    for (int i = 0; i < lanes; ++i) {
        means[i] = arithmetic.quotient(sums[i]);
        sums[i] += slopes[i];
        slopes[i] += Sum(entering[i]) - 2 * Sum(centre[i]) + Sum(leaving[i]);
    }
}

/// The same for many lanes of bytes, in the widest vectors that there are.
void stepManyLanes(const NarrowBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
                   const uint8_t* entering, const uint8_t* centre, const uint8_t* leaving, int lanes);

/// A line of places, `stride` samples apart, each with one or more lanes side by side.
template <class Sample>
struct Line {
    const Sample* first;
    ptrdiff_t stride;
    int32_t length;

    const Sample* at(int32_t place) const { return first + place * stride; }
    const Sample* last() const { return at(length - 1); }
};

/// Walks a window along `line`: `step(place, entering, centre, leaving)` for every place, with the
/// samples of the second difference that leads to the next.
template <class Sample, class Step>
void walk(const Line<Sample>& line, int32_t halfWidth, Step&& step) {
    const int32_t last = line.length - 1;
    for (int32_t place = 0; place <= last; ++place)
        step(place, line.at(std::min(place + halfWidth + 2, last)), line.at(std::min(place + 1, last)),
             line.at(std::max(place - halfWidth, 0)));
}

/// Up to here a call costs more than the lanes do.
inline constexpr int kFewLanes = 4;

/// The windows of lanes side by side, each at the same place of its own line: exactly `Lanes` of
/// them if they are few, else up to so many.
template <class Arithmetic, int Lanes>
class Window {
public:
    using Sample = typename Arithmetic::Sample;
    using Sum = typename Arithmetic::Sum;

    /// Stands at place 0 of `line`, in its first `lanes` lanes.
    Window(const Arithmetic& arithmetic, const Line<Sample>& line, int32_t halfWidth, int lanes)
        : arithmetic_(arithmetic), lanes_(lanes) {
        sumRightHalf(line, halfWidth);
        const Sum reach = Sum(halfWidth) + 1;
        const Sum leftWeight = Sum(int64_t{halfWidth + 1} * (int64_t{halfWidth} + 2) / 2);
        const Sample* first = line.at(0);
        const Sample* entering = line.at(std::min(halfWidth + 1, line.length - 1));
        for (int i = 0; i < lanes_; ++i) {
            sums_[i] += Sum(first[i]) * leftWeight;
            slopes_[i] += Sum(entering[i]) - Sum(first[i]) * reach;
        }
    }

    /// Writes the means at this place to `means` and goes one place on.
    void step(Sample* means, const Sample* entering, const Sample* centre, const Sample* leaving) {
        if constexpr (Lanes > kFewLanes && std::is_same_v<Arithmetic, NarrowBytes>)
            stepManyLanes(arithmetic_, sums_, slopes_, means, entering, centre, leaving, lanes_);
        else
            stepLanes(arithmetic_, sums_, slopes_, means, entering, centre, leaving,
                      Lanes > kFewLanes ? lanes_ : Lanes);
    }

protected:
    /// Weighted into `sums_` and plain into `slopes_`: the samples right of place 0. Those past the
    /// end of the line come all at once.
    void sumRightHalf(const Line<Sample>& line, int32_t halfWidth) {
        std::fill_n(sums_, lanes_, Sum{0});
        std::fill_n(slopes_, lanes_, Sum{0});
        const int32_t inside = std::min(halfWidth, line.length - 1);
        for (int32_t place = 1; place <= inside; ++place) {
            const Sample* samples = line.at(place);
            for (int i = 0; i < lanes_; ++i) {
                slopes_[i] += Sum(samples[i]);
                sums_[i] += slopes_[i];
            }
        }
        const int64_t outside = halfWidth - inside;
        for (int i = 0; i < lanes_ && outside > 0; ++i) {
            const Sum last = Sum(line.last()[i]);
            sums_[i] += slopes_[i] * Sum(outside) + last * Sum(outside * (outside + 1) / 2);
            slopes_[i] += last * Sum(outside);
        }
    }

    const Arithmetic arithmetic_;
    const int lanes_;
    alignas(16) Sum sums_[Lanes];
    alignas(16) Sum slopes_[Lanes];
};

#if defined(__SSE2__)
/// Four lanes of bytes, a pixel, in vector registers. Along a row the compiler does not find this
/// by itself, and it halves the time.
class PixelWindow : Window<NarrowBytes, 4> {
public:
    PixelWindow(const NarrowBytes& arithmetic, const Line<uint8_t>& line, int32_t halfWidth)
        : Window(arithmetic, line, halfWidth, 4),
          sum_(_mm_load_si128(reinterpret_cast<const __m128i*>(sums_))),
          slope_(_mm_load_si128(reinterpret_cast<const __m128i*>(slopes_))),
          multiplier_(_mm_set1_epi32(static_cast<int>(arithmetic.division().multiplier()))),
          shift_(_mm_cvtsi32_si128(arithmetic.division().shift())) {}

    void step(uint8_t* means, const uint8_t* entering, const uint8_t* centre, const uint8_t* leaving) {
        store(means, quotients());
        sum_ = _mm_add_epi32(sum_, slope_);
        const __m128i outer = _mm_add_epi32(load(entering), load(leaving));
        slope_ = _mm_add_epi32(slope_, _mm_sub_epi32(outer, _mm_slli_epi32(load(centre), 1)));
    }

private:
    static __m128i load(const uint8_t* bytes) {
        int32_t word;
        std::copy_n(bytes, 4, reinterpret_cast<uint8_t*>(&word));
        const __m128i zero = _mm_setzero_si128();
        return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(word), zero), zero);
    }

    static void store(uint8_t* bytes, __m128i lanes) {
        const __m128i shorts = _mm_packs_epi32(lanes, lanes);
        const int32_t word = _mm_cvtsi128_si32(_mm_packus_epi16(shorts, shorts));
        std::copy_n(reinterpret_cast<const uint8_t*>(&word), 4, bytes);
    }

    __m128i quotients() const {
        const __m128i even = _mm_srl_epi64(_mm_mul_epu32(sum_, multiplier_), shift_);
        const __m128i odd = _mm_srl_epi64(_mm_mul_epu32(_mm_srli_epi64(sum_, 32), multiplier_), shift_);
        return _mm_or_si128(even, _mm_slli_epi64(odd, 32));
    }

    __m128i sum_, slope_;
    const __m128i multiplier_, shift_;
};
#endif

}  // namespace krl::tent
