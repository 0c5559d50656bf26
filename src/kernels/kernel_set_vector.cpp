#include "kernels/hole_filling/hole_filling_vector.h"
#include "kernels/kernel_set.h"
#include "kernels/speckle/speckle_vector.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

extern const KernelSet kernels;
const KernelSet kernels = {Level::FILTERPROCESSOR_LEVEL, hole_filling, speckle};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
