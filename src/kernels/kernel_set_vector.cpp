#include "kernels/correction/correction_vector.h"
#include "kernels/disparity/depth_lookup_vector.h"
#include "kernels/disparity/depth_table_vector.h"
#include "kernels/hole_filling/hole_filling_vector.h"
#include "kernels/kernel_set.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

extern const KernelSet kernels;
const KernelSet kernels = {Level::FILTERPROCESSOR_LEVEL, correction, depth_table, depth_lookup,
                           hole_filling};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
