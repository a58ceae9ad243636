#pragma once

/// Marks a function whose loops gain from wide vectors: it is compiled again for processors with AVX2
/// and for those with AVX-512, and the loader takes the one that fits. All give the same bytes. Where
/// the loader cannot choose, or a sanitizer is not yet up when it does, there is only the plain one.
///
/// `KRL_STREAM_CLONES` marks the loops that only memory holds up: they stop at AVX2, as wider words that
/// lie across the cache's lines take twice the time.
///
/// `KRL_ONLY_PLAIN` and `KRL_ONLY_AVX2` fix the level, so that each can be tested on a processor that
/// would take another.
#if defined(KRL_ONLY_PLAIN)
#define KRL_WIDE_CLONES
#define KRL_STREAM_CLONES
#elif defined(KRL_ONLY_AVX2)
#define KRL_WIDE_CLONES __attribute__((target("avx2")))
#define KRL_STREAM_CLONES KRL_WIDE_CLONES
#elif defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define KRL_WIDE_CLONES __attribute__((target_clones("arch=x86-64-v4", "avx2", "default")))
#define KRL_STREAM_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define KRL_WIDE_CLONES
#define KRL_STREAM_CLONES
#endif
