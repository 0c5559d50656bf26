#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_PLAIN_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_PLAIN_H

#include "kernels/disparity/depth_lookup.h"

namespace filterprocessor::plain {

void convert_plain_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                         const std::uint16_t* table, std::size_t size);
void convert_packed_codes(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                          const std::uint16_t* table, std::size_t size);

inline constexpr DepthLookupKernels depth_lookup = {convert_plain_codes, convert_packed_codes, nullptr,
                                                    nullptr};

}  // namespace filterprocessor::plain

#endif
