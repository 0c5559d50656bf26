#ifndef FILTERPROCESSOR_COMMON_SATURATE_H
#define FILTERPROCESSOR_COMMON_SATURATE_H

#include <concepts>
#include <limits>

namespace filterprocessor {

/// Truncates toward zero. Out of range gives the nearest end of the range and NaN gives 0, on every
/// processor.
template <std::integral Integer, std::floating_point Real>
constexpr Integer saturate(Real value) {
  using Limits = std::numeric_limits<Integer>;
  // 2^digits is one past the largest integer and exact in every floating type; min is exact as it is.
  constexpr Real end = static_cast<Real>(Limits::max() / 2 + 1) * 2;
  constexpr Real begin = static_cast<Real>(Limits::min());
  if (!(value == value)) return 0;
  if (value >= end) return Limits::max();
  if (value <= begin) return Limits::min();
  return static_cast<Integer>(value);
}

}  // namespace filterprocessor

#endif
