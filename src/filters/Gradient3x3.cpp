#include "filters/Gradient3x3.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace krl {

#if defined(__SSE2__)

namespace {

__m128i load(const uint8_t* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

/// Eight bytes of a vector as 16-bit words, the low or the high half.
template <bool kHigh>
__m128i widen(__m128i bytes) {
    const __m128i zero = _mm_setzero_si128();
    return kHigh ? _mm_unpackhi_epi8(bytes, zero) : _mm_unpacklo_epi8(bytes, zero);
}

/// Truncated square roots of four integers below 2^24: single precision is exact enough there, as
/// the root of a number just under a square stays below the root of that square.
__m128i truncatedRoots(__m128i squares) { return _mm_cvttps_epi32(_mm_sqrt_ps(_mm_cvtepi32_ps(squares))); }

/// What three rows hold left of, at and right of sixteen bytes.
struct Neighbourhood {
    __m128i above[3], at[3], below[3];

    Neighbourhood(const uint8_t* rowAbove, const uint8_t* row, const uint8_t* rowBelow) {
        for (int column = 0; column < 3; ++column) {
            const int offset = (column - 1) * 4;
            above[column] = load(rowAbove + offset);
            at[column] = load(row + offset);
            below[column] = load(rowBelow + offset);
        }
    }

    /// Strengths, as words that may pass 255, of eight of the sixteen bytes.
    template <bool kHigh>
    __m128i strengths() const {
        const auto difference = [](__m128i a, __m128i b) {
            return _mm_sub_epi16(widen<kHigh>(a), widen<kHigh>(b));
        };
        const auto weighted = [](__m128i a, __m128i b, __m128i c) {
            return _mm_add_epi16(_mm_add_epi16(a, c), _mm_add_epi16(b, b));
        };
        const __m128i vertical = weighted(difference(below[0], above[0]), difference(below[1], above[1]),
                                          difference(below[2], above[2]));
        const __m128i horizontal = weighted(difference(above[0], above[2]), difference(at[0], at[2]),
                                            difference(below[0], below[2]));
        const __m128i low = _mm_unpacklo_epi16(vertical, horizontal);
        const __m128i high = _mm_unpackhi_epi16(vertical, horizontal);
        return _mm_packs_epi32(truncatedRoots(_mm_madd_epi16(low, low)),
                               truncatedRoots(_mm_madd_epi16(high, high)));
    }
};

}  // namespace

#endif

void sobelStrengths(const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                    Pixel* strengths) {
    const uint8_t *up = firstByte(above), *row = firstByte(at), *down = firstByte(below);
    uint8_t* out = firstByte(strengths);
    const int64_t bytes = int64_t(count) * 4;
    int64_t i = 0;
#if defined(__SSE2__)
    for (; i + 16 <= bytes; i += 16) {
        const Neighbourhood around(up + i, row + i, down + i);
        const __m128i result = _mm_packus_epi16(around.strengths<false>(), around.strengths<true>());
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), result);
    }
#endif
    for (; i < bytes; ++i) out[i] = sobelStrength(sobelSums(up + i, row + i, down + i));
}

void repairBorder(const ImageBuffer& image, ChannelMask mask) {
    const int32_t width = image.width, height = image.height;
    if (width < 3 || height < 3) return;
    for (int32_t y = 1; y < height - 1; ++y) {
        Pixel* row = image.row(y);
        row[0] = mask.merge(row[0], row[1]);
        row[width - 1] = mask.merge(row[width - 1], row[width - 2]);
    }
    mask.write(image.row(0), image.row(1), width);
    mask.write(image.row(height - 1), image.row(height - 2), width);
}

}  // namespace krl
