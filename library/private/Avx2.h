#pragma once

// For loops that are compiled for the baseline processor and again for AVX2, chosen at run time, with the same bits:
// the operations are the same, and products are not fused. The body is a VEK_INLINE function, which a plain function
// and a VEK_AVX2 one call; VEK_AVX2 is defined where there is such a choice. A test defines VEK_WITHOUT_AVX2 to run the
// code of other processors.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(VEK_WITHOUT_AVX2)
#define VEK_INLINE inline __attribute__((always_inline))
#define VEK_AVX2 __attribute__((target("avx2")))
#else
#define VEK_INLINE inline
#endif
