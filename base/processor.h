#pragma once

// Internal: whether the compiler knows the x86 vector instructions, and which of them the processor has.  A
// source with a vector path puts it behind `#if TARN_X86_VECTORS` and marks its functions TARN_SSSE3 or
// TARN_AVX2, so that they may use instructions that the rest of the program isn't compiled for.  It also has
// a path without any.

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#define TARN_X86_VECTORS 1
#include <immintrin.h>
#define TARN_SSSE3 __attribute__((target("ssse3")))
#define TARN_AVX2 __attribute__((target("avx2")))
#else
#define TARN_X86_VECTORS 0
#endif

namespace tarn {

// What a path needs of the processor; each level includes those before it.
enum class VectorLevel { none, ssse3, avx2 };

// Answers the highest level of this machine, from a word that the compiler's start-up code filled.  On
// 64-bit Windows it is at most ssse3 with g++, which doesn't align the stack to the 32 bytes that its own
// AVX code needs.
inline VectorLevel vectorLevel() {
#if TARN_X86_VECTORS
#if !defined(_WIN64) || defined(__clang__)
    if (__builtin_cpu_supports("avx2")) return VectorLevel::avx2;
#endif
    if (__builtin_cpu_supports("ssse3")) return VectorLevel::ssse3;
#endif
    return VectorLevel::none;
}

}  // namespace tarn
