#ifndef FILTERPROCESSOR_KERNELS_KERNEL_SET_H
#define FILTERPROCESSOR_KERNELS_KERNEL_SET_H

#include "kernels/correction/correction.h"
#include "kernels/disparity/depth_lookup.h"
#include "kernels/disparity/depth_table.h"
#include "kernels/hole_filling/hole_filling.h"
#include "kernels/level.h"
#include "kernels/margin/margin.h"
#include "kernels/resize/resize.h"
#include "kernels/spatial/spatial.h"
#include "kernels/speckle/speckle.h"
#include "kernels/temporal/temporal.h"

namespace filterprocessor {

/// Every kernel at one level. The plain set defines the results; the others equal it bit for bit.
struct KernelSet {
  Level level;
  CorrectionKernels correction;
  DepthTableKernels depth_table;
  DepthLookupKernels depth_lookup;
  HoleFillingKernels hole_filling;
  MarginKernels margin;
  ResizeKernels resize;
  SpeckleKernels speckle;
  SpatialKernels spatial;
  TemporalKernels temporal;
};

/// The kernels of a level, or null when they are not compiled for this processor family.
/// The caller asks machine_runs() before it calls one.
const KernelSet* kernel_set(Level level);

/// The kernels that the exported functions use: chosen once, when the library is loaded, from the
/// processor and the environment variable FILTERPROCESSOR_CPU, which names a level as level_name() does.
const KernelSet& active_kernels();

}  // namespace filterprocessor

#endif
