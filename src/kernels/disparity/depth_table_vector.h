#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_VECTOR_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_VECTOR_H

#include "kernels/disparity/depth_table.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

void build_stereo_table(const StereoRule& rule, std::uint16_t* table, std::size_t size);
void build_mono_table(const MonoRule& rule, std::uint16_t* table, std::size_t size);

inline constexpr DepthTableKernels depth_table = {build_stereo_table, build_mono_table};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
