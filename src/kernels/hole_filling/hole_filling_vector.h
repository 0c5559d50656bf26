#ifndef FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_VECTOR_H
#define FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_VECTOR_H

#include "kernels/hole_filling/hole_filling.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

HoleFillingKernels::Fill fill_top, fill_smaller, fill_larger;

inline constexpr HoleFillingKernels hole_filling = {fill_top, fill_smaller, fill_larger};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
