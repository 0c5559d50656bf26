#include "kernels/hole_filling/hole_filling_vector.h"
#include "kernels/kernel_set.h"
#include "kernels/spatial/spatial_vector.h"
#include "kernels/temporal/temporal_vector.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

extern const KernelSet kernels;
const KernelSet kernels = {Level::FILTERPROCESSOR_LEVEL, hole_filling, spatial, temporal};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
