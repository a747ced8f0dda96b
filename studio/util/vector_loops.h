#pragma once

/// For functions whose loops are compiled twice, with the vectors that every x86-64 processor
/// has and with AVX2; the loader takes what the processor has. Neither fuses a multiplication
/// with an addition, so both round alike and give the same bits.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define TAVORA_VECTOR_LOOPS [[gnu::target_clones("avx2", "default")]]
#else
#define TAVORA_VECTOR_LOOPS
#endif

/// Before a loop that writes to none of the arrays that it reads, where there are too many for
/// the compiler to check.
#if defined(__GNUC__) && !defined(__clang__)
#define TAVORA_NO_ALIASES _Pragma("GCC ivdep")
#else
#define TAVORA_NO_ALIASES
#endif
