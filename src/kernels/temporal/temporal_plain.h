#ifndef FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_PLAIN_H
#define FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_PLAIN_H

#include "kernels/temporal/temporal.h"

namespace filterprocessor::plain {

TemporalKernels::Smooth smooth_temporal;

inline constexpr TemporalKernels temporal = {smooth_temporal};

}  // namespace filterprocessor::plain

#endif
