/**
 * @file
 * The processor level of the kernels: which vector instructions they use. It is the best that the machine
 * runs, chosen when the library is loaded: "avx512" (processors with VBMI2), "avx2", "neon" or "scalar".
 * The environment variable FILTERPROCESSOR_CPU lowers it; a wish that is not granted is said on standard
 * error. Results are the same at every level.
 */
#ifndef FILTERPROCESSOR_LEVEL_H
#define FILTERPROCESSOR_LEVEL_H

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/** The level's name. The text belongs to the library. */
FILTERPROCESSOR_API const char* depth_api_level(void);

FILTERPROCESSOR_END_C

#endif
