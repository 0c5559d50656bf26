#ifndef FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_PLAIN_H
#define FILTERPROCESSOR_KERNELS_HOLE_FILLING_HOLE_FILLING_PLAIN_H

#include "kernels/hole_filling/hole_filling.h"

namespace filterprocessor::plain {

HoleFillingKernels::Fill fill_top, fill_smaller, fill_larger;

inline constexpr HoleFillingKernels hole_filling = {fill_top, fill_smaller, fill_larger};

}  // namespace filterprocessor::plain

#endif
