#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_PLAIN_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_PLAIN_H

#include "kernels/disparity/depth_lookup.h"

namespace filterprocessor::plain {

DepthLookupKernels::Load convert_plain_codes, convert_packed_codes;

inline constexpr DepthLookupKernels depth_lookup = {convert_plain_codes, convert_packed_codes, nullptr,
                                                    nullptr};

}  // namespace filterprocessor::plain

#endif
