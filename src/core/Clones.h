#pragma once

/// Marks a function whose loops gain from wide vectors: it is compiled a second time for processors
/// with AVX2, and the loader takes the one that fits. Both give the same bytes. Where the loader
/// cannot choose, or a sanitizer is not yet up when it does, there is only the plain one.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define KRL_WIDE_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define KRL_WIDE_CLONES
#endif
