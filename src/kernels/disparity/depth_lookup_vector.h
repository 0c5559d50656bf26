#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_VECTOR_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_VECTOR_H

#include "kernels/disparity/depth_lookup_plain.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

DepthLookupKernels::Compute convert_plain_quotient, convert_packed_quotient;

/// Gathers are no faster than scalar loads, so tables are read by the plain form.
inline constexpr DepthLookupKernels depth_lookup = {plain::convert_plain_codes,
                                                    plain::convert_packed_codes, convert_plain_quotient,
                                                    convert_packed_quotient};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
