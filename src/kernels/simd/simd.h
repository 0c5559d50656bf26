/// The vector types of the level that a file is compiled for. They have the same names and members at
/// every level; intrinsics stand nowhere else.
///
/// U16 holds `lanes` unsigned 16-bit values in groups of eight (128 bits); Mask16 holds a flag per lane.
#ifndef FILTERPROCESSOR_KERNELS_SIMD_SIMD_H
#define FILTERPROCESSOR_KERNELS_SIMD_SIMD_H

#if defined(FILTERPROCESSOR_LEVEL_AVX512)
#define FILTERPROCESSOR_LEVEL avx512
#include "kernels/simd/avx512.h"
#elif defined(FILTERPROCESSOR_LEVEL_AVX2)
#define FILTERPROCESSOR_LEVEL avx2
#include "kernels/simd/avx2.h"
#elif defined(FILTERPROCESSOR_LEVEL_NEON)
#define FILTERPROCESSOR_LEVEL neon
#include "kernels/simd/neon.h"
#else
#error "compile vector kernels with one of the FILTERPROCESSOR_LEVEL_* definitions"
#endif

#endif
