/// Calls of kernels with whatever parameters and images, one function for each family; and the comparison
/// of what a level makes of a call with what the plain form does.
#ifndef FILTERPROCESSOR_TESTS_CASES_KERNEL_CASES_H
#define FILTERPROCESSOR_TESTS_CASES_KERNEL_CASES_H

#include <functional>
#include <string>
#include <variant>

#include "cases/buffers.h"
#include "cases/images.h"
#include "kernels/kernel_set.h"

namespace filterprocessor {

/// Takes buffers and makes one call; the same buffers in the same order whenever it is called.
using KernelCase = std::function<void(const KernelSet& kernels, Buffers& buffers)>;

KernelCase correction_case(Source& source);
KernelCase disparity_case(Source& source);
KernelCase hole_filling_case(Source& source);
KernelCase margin_case(Source& source);
KernelCase resize_case(Source& source);
KernelCase spatial_case(Source& source);
KernelCase speckle_case(Source& source);
KernelCase temporal_case(Source& source);

/// What a level does otherwise than the plain form; empty when nothing.
/// @param placements  see Buffers
std::string difference(const KernelCase& run, const KernelSet& level, std::uint32_t placements);

/// Parts of cases for tests that compare with something else than the plain form.
using DepthRule = std::variant<StereoRule, MonoRule>;
DepthRule any_depth_rule(Source& source);

struct AnyMargins {
  MarginRule rule;  ///< without `chamfer`
  Pixels chamfer;   ///< if not empty
};
AnyMargins any_margins(Source& source, const Sides& sides);

}  // namespace filterprocessor

#endif
