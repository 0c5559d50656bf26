#include "kernels/correction/correction_vector.h"
#include "kernels/disparity/depth_lookup_vector.h"
#include "kernels/disparity/depth_table_vector.h"
#include "kernels/hole_filling/hole_filling_vector.h"
#include "kernels/kernel_set.h"
#include "kernels/margin/margin_vector.h"
#include "kernels/resize/resize_vector.h"
#include "kernels/spatial/spatial_vector.h"
#include "kernels/speckle/speckle_vector.h"
#include "kernels/temporal/temporal_vector.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

extern const KernelSet kernels;
const KernelSet kernels = {.level = Level::FILTERPROCESSOR_LEVEL,
                           .correction = correction,
                           .depth_table = depth_table,
                           .depth_lookup = depth_lookup,
                           .hole_filling = hole_filling,
                           .margin = margin,
                           .resize = resize,
                           .speckle = speckle,
                           .spatial = spatial,
                           .temporal = temporal};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
