#include "kernels/path/GatherPixels.h"

#include "core/PixelWord.h"

// Compilers make single loads of this loop, which take more instructions than AVX2's own.
#if (defined(__x86_64__) || defined(KRL_ONLY_AVX2)) && defined(__GNUC__) && !defined(KRL_ONLY_PLAIN)
#define KRL_GATHERS 1
#include <immintrin.h>
#endif

namespace krl {

namespace {

#if defined(KRL_GATHERS)

/// Gathers whole vectors; returns how many pixels.
__attribute__((target("avx2"))) int32_t gatherVectors(const Pixel* pixels, const int32_t* offsets,
                                                      int32_t count, uint32_t* words) {
    constexpr int32_t kLanes = 8;
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(offsets + i));
        const __m256i found = _mm256_i32gather_epi32(reinterpret_cast<const int*>(pixels), places, 4);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(words + i), found);
    }
    return i;
}

bool canGather() {
#if defined(KRL_ONLY_AVX2)
    return true;
#else
    static const bool can = __builtin_cpu_supports("avx2");
    return can;
#endif
}

#else

int32_t gatherVectors(const Pixel*, const int32_t*, int32_t, uint32_t*) { return 0; }
constexpr bool canGather() { return false; }

#endif

}  // namespace

void gatherPixels(const Pixel* pixels, const int32_t* offsets, int32_t count, uint32_t* words) {
    const int32_t gathered = canGather() ? gatherVectors(pixels, offsets, count, words) : 0;
    for (int32_t i = gathered; i < count; ++i) words[i] = wordOf(pixels[offsets[i]]);
}

}  // namespace krl
