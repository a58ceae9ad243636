#include "core/Gather.h"

#include <cstddef>
#include <cstring>

// Compilers make single loads of this loop, which take more instructions than AVX2's own.
#if (defined(__x86_64__) || defined(KRL_ONLY_AVX2)) && defined(__GNUC__) && !defined(KRL_ONLY_PLAIN)
#define KRL_GATHERS 1
#include <immintrin.h>
#endif

namespace krl {

namespace {

#if defined(KRL_GATHERS)

/// Gathers whole vectors; returns how many words.
__attribute__((target("avx2"))) int32_t gatherVectors(const void* from, const int32_t* at, int32_t count,
                                                      unsigned char* to) {
    constexpr int32_t kLanes = 8;
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at + i));
        const __m256i found = _mm256_i32gather_epi32(static_cast<const int*>(from), places, 4);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + ptrdiff_t(i) * 4), found);
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

int32_t gatherVectors(const void*, const int32_t*, int32_t, unsigned char*) { return 0; }
constexpr bool canGather() { return false; }

#endif

}  // namespace

void gatherWords(const void* from, const int32_t* at, int32_t count, void* to) {
    const auto* source = static_cast<const unsigned char*>(from);
    auto* target = static_cast<unsigned char*>(to);
    const int32_t gathered = canGather() ? gatherVectors(from, at, count, target) : 0;
    for (int32_t i = gathered; i < count; ++i)
        std::memcpy(target + ptrdiff_t(i) * 4, source + ptrdiff_t(at[i]) * 4, 4);
}

}  // namespace krl
