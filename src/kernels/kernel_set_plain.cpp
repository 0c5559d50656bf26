#include "kernels/hole_filling/hole_filling_plain.h"
#include "kernels/kernel_set.h"
#include "kernels/spatial/spatial_plain.h"
#include "kernels/temporal/temporal_plain.h"

namespace filterprocessor::plain {

extern const KernelSet kernels;
const KernelSet kernels = {Level::scalar, hole_filling, spatial, temporal};

}  // namespace filterprocessor::plain
