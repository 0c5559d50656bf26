#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_PLAIN_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_TABLE_PLAIN_H

#include "kernels/disparity/depth_table.h"

namespace filterprocessor::plain {

void build_stereo_table(const StereoRule& rule, std::uint16_t* table, std::size_t size);
void build_mono_table(const MonoRule& rule, std::uint16_t* table, std::size_t size);

/// The entry that the mono rule gives `code`.
std::uint16_t mono_entry(const MonoRule& rule, std::size_t code);
/// The entry that the stereo rule gives `code`.
std::uint16_t stereo_entry(const StereoRule& rule, std::size_t code);

inline constexpr DepthTableKernels depth_table = {build_stereo_table, build_mono_table};

}  // namespace filterprocessor::plain

#endif
