#include <algorithm>
#include <cmath>

#include "common/saturate.h"
#include "kernels/temporal/temporal.h"

namespace filterprocessor::plain {

namespace {

float blend(float previous, float current, float weight) {
  const float rest = previous * (1 - weight);
#if defined(__aarch64__)
  return std::fma(current, weight, rest);
#else
  return rest + current * weight;
#endif
}

std::uint16_t smooth_pixel(std::uint16_t current, std::uint16_t previous, float diff_scale,
                           float weight) {
  const float c = current;
  const float p = previous;
  if (!(p > 0 && c > 0 && std::fabs(c - p) < std::min(p, c) * diff_scale)) return current;
  return static_cast<std::uint16_t>(std::max(saturate<std::int32_t>(blend(p, c, weight)), 0));
}

void smooth_temporal(std::uint16_t* depth, std::uint16_t* history, std::size_t count, float diff_scale,
                     float weight) {
  for (std::size_t i = 0; i < count; ++i) {
    depth[i] = history[i] = smooth_pixel(depth[i], history[i], diff_scale, weight);
  }
}

}  // namespace

extern const TemporalKernels temporal = {smooth_temporal};

}  // namespace filterprocessor::plain
