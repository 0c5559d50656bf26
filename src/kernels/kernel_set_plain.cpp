#include "kernels/correction/correction_plain.h"
#include "kernels/disparity/depth_lookup_plain.h"
#include "kernels/disparity/depth_table_plain.h"
#include "kernels/hole_filling/hole_filling_plain.h"
#include "kernels/kernel_set.h"
#include "kernels/margin/margin_plain.h"
#include "kernels/resize/resize_plain.h"
#include "kernels/spatial/spatial_plain.h"
#include "kernels/speckle/speckle_plain.h"
#include "kernels/temporal/temporal_plain.h"

namespace filterprocessor::plain {

extern const KernelSet kernels;
const KernelSet kernels = {.level = Level::scalar,
                           .correction = correction,
                           .depth_table = depth_table,
                           .depth_lookup = depth_lookup,
                           .hole_filling = hole_filling,
                           .margin = margin,
                           .resize = resize,
                           .speckle = speckle,
                           .spatial = spatial,
                           .temporal = temporal};

}  // namespace filterprocessor::plain
