#ifndef FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_H
#define FILTERPROCESSOR_KERNELS_DISPARITY_DEPTH_LOOKUP_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// Depth as a quotient in 32-bit float. With k = code - first in 16 bits, an entry is trunc(numerator /
/// (k + offset)) where k <= span and the code is not `hole`, and 0 elsewhere. With `signed_14_bit` the
/// code of k is the sign-extended 14-bit number in it, and codes above `last` give 0. Cheaper than
/// loading an entry a pixel, and used only where a comparison of every code has shown that a level's
/// arithmetic gives the table.
struct DepthQuotient {
  float numerator;
  float offset;
  std::uint16_t first;
  std::uint16_t span;
  std::uint16_t hole;
  std::uint16_t last;
  bool signed_14_bit;
};

/// Conversion of codes to depth at one level. `source` and `target` hold `count` pixels and are
/// the same or do not overlap. `table` has an entry for each of the 65536 codes, 0 for those that the camera does not have.
struct DepthLookupKernels {
  using Load = void(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                    const std::uint16_t* table);
  using Compute = void(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                       const DepthQuotient& quotient);

  Load* plain_codes;   ///< target = table[code]
  Load* packed_codes;  ///< the code stands in the high 12 bits and the low 4 are carried through
  /// The same by a quotient; null at levels that have no way to do it faster.
  Compute* plain_quotient;
  Compute* packed_quotient;
};

namespace plain {
DepthLookupKernels::Load convert_plain_codes, convert_packed_codes;
extern const DepthLookupKernels depth_lookup;
}  // namespace plain

}  // namespace filterprocessor

#endif
