#ifndef FILTERPROCESSOR_KERNELS_KERNEL_SET_H
#define FILTERPROCESSOR_KERNELS_KERNEL_SET_H

#include <span>

#include "kernels/correction/correction.h"
#include "kernels/disparity/depth_lookup.h"
#include "kernels/disparity/depth_table.h"
#include "kernels/hole_filling/hole_filling.h"
#include "kernels/margin/margin.h"
#include "kernels/resize/resize.h"
#include "kernels/spatial/spatial.h"
#include "kernels/speckle/speckle.h"
#include "kernels/temporal/temporal.h"

namespace filterprocessor {

/// Every kernel at one processor level. The plain set defines the results; the others equal it bit for
/// bit.
struct KernelSet {
  const char* level;       ///< "scalar" for the plain forms
  bool (*machine_runs)();  ///< asked before a kernel is called
  const CorrectionKernels& correction;
  const DepthTableKernels& depth_table;
  const DepthLookupKernels& depth_lookup;
  const HoleFillingKernels& hole_filling;
  const MarginKernels& margin;
  const ResizeKernels& resize;
  const SpeckleKernels& speckle;
  const SpatialKernels& spatial;
  const TemporalKernels& temporal;
};

/// The sets compiled for this processor family, the plain one first, the fastest last.
std::span<const KernelSet> kernel_sets();

/// The set to use, and whether it is what was asked for.
struct KernelChoice {
  enum Wish { granted, unknown, lacking };

  const KernelSet& kernels;
  Wish wish;
};
/// The best set that the machine runs, or that of the level `wish` if the machine runs it.
/// @param wish  null: none
KernelChoice choose_kernels(const char* wish);

/// The kernels that the exported functions use: chosen once, when the library is loaded, from the
/// processor and the environment variable FILTERPROCESSOR_CPU. A wish that is not granted is said on
/// standard error.
const KernelSet& active_kernels();

}  // namespace filterprocessor

#endif
