#pragma once

/// The compiler attributes and pragmas for vectorised loops, in one place.
///
/// `KRL_VECTOR_LEVELS` marks a function whose loops gain from wide vectors: it is also compiled
/// for AVX2 and for AVX-512, and the loader selects the best version for the processor. All give the same
/// bytes. The Windows plug-in selects AVX2 or the plain version itself (cmake/join-levels); where a loader
/// cannot, or would before a sanitizer is initialised, only the plain version exists.
///
/// `KRL_STREAM_LEVELS` marks memory-bound loops: they stop at AVX2, since 64-byte accesses across cache
/// lines take twice the time.
///
/// `KRL_ONLY_PLAIN` and `KRL_ONLY_AVX2` fix the level, so that each can be tested on any processor that
/// supports it.
#if defined(KRL_ONLY_PLAIN)
#define KRL_VECTOR_LEVELS
#define KRL_STREAM_LEVELS
#elif defined(KRL_ONLY_AVX2)
#define KRL_VECTOR_LEVELS __attribute__((target("avx2")))
#define KRL_STREAM_LEVELS KRL_VECTOR_LEVELS
#elif defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define KRL_VECTOR_LEVELS __attribute__((target_clones("arch=x86-64-v4", "avx2", "default")))
#define KRL_STREAM_LEVELS __attribute__((target_clones("avx2", "default")))
#else
#define KRL_VECTOR_LEVELS
#define KRL_STREAM_LEVELS
#endif
