#pragma once

// LUMO_SIMD_CLONES before a plain loop lets the compiler build it for several instruction sets; the
// best one is chosen when the program starts. The bytes that come out are the same for all.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && !defined(LUMO_SANITIZED)
#define LUMO_SIMD_CLONES \
    __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#else
#define LUMO_SIMD_CLONES
#endif
