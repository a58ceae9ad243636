#include "kernels/curve/CurveLookup.h"

#if defined(__x86_64__) && defined(__GNUC__) && !defined(KRL_ONLY_PLAIN) && !defined(KRL_ONLY_AVX2)
#define KRL_BYTE_PERMUTES 1
#include <immintrin.h>
#endif

namespace krl {

namespace {

#if defined(KRL_BYTE_PERMUTES)
#define KRL_PERMUTES_BYTES __attribute__((target("avx512f,avx512bw,avx512vbmi")))

constexpr ptrdiff_t kPixelsAtOnce = 16;

/// AVX-512 holds a whole curve in four registers. Each half of it is looked up by one instruction, and
/// the top bit of a byte selects the half.
struct CurveRegisters {
    __m512i quarters[4];
    __mmask64 touched;
};

KRL_PERMUTES_BYTES inline void loadCurve(const ChannelCurve& source, CurveRegisters& registers) {
    for (int quarter = 0; quarter < 4; ++quarter)
        registers.quarters[quarter] = _mm512_loadu_si512(source.curve.data() + quarter * 64);
    registers.touched = 0x1111111111111111u * source.channels;
}

template <size_t count>
KRL_PERMUTES_BYTES Pixel* permuteBytes(Pixel* first, Pixel* last, const ChannelCurve (&curves)[count]) {
    CurveRegisters registers[count];
    for (size_t i = 0; i < count; ++i) loadCurve(curves[i], registers[i]);
    for (; last - first >= kPixelsAtOnce; first += kPixelsAtOnce) {
        const __m512i bytes = _mm512_loadu_si512(first);
        const __mmask64 isUpper = _mm512_movepi8_mask(bytes);
        __m512i result = bytes;
        for (const CurveRegisters& curve : registers) {
            const __m512i* quarters = curve.quarters;
            const __m512i lower = _mm512_permutex2var_epi8(quarters[0], bytes, quarters[1]);
            const __m512i upper = _mm512_permutex2var_epi8(quarters[2], bytes, quarters[3]);
            const __m512i found = _mm512_mask_mov_epi8(lower, isUpper, upper);
            result = _mm512_mask_mov_epi8(result, curve.touched, found);
        }
        _mm512_storeu_si512(first, result);
    }
    return first;
}

bool canPermuteBytes() {
    static const bool can = __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi");
    return can;
}

template <size_t count>
Pixel* lookUp(Pixel* first, Pixel* last, const ChannelCurve (&curves)[count]) {
    return canPermuteBytes() ? permuteBytes(first, last, curves) : first;
}

#else

template <size_t count>
Pixel* lookUp(Pixel* first, Pixel*, const ChannelCurve (&)[count]) {
    return first;
}

#endif

}  // namespace

Pixel* lookUpWide(Pixel* first, Pixel* last, const ChannelCurve (&curves)[1]) {
    return lookUp(first, last, curves);
}

Pixel* lookUpWide(Pixel* first, Pixel* last, const ChannelCurve (&curves)[3]) {
    return lookUp(first, last, curves);
}

}  // namespace krl
