#include "kernels/simd/simd.h"
#include "kernels/temporal/temporal.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// The pixel rule for one vector. A pixel of value 0 needs no test: the smaller value is then 0, and no
/// distance is below 0 x diff_scale.
struct Smoother {
  Factor diff_scale, rest, weight;

  Mask32 close(PixelF32 current, PixelF32 previous) const {
    return abs(current - previous) < min(current, previous) * diff_scale;
  }
  F32 blend(PixelF32 current, PixelF32 previous) const {
    return add_product(previous * rest, current, weight);
  }
  U16 operator()(U16 current, U16 previous) const {
    const PixelHalves c(current);
    const PixelHalves p(previous);
    return truncated_where(close(c.first, p.first), blend(c.first, p.first), close(c.second, p.second),
                           blend(c.second, p.second), c);
  }
};

void smooth_temporal(std::uint16_t* depth, std::uint16_t* history, std::size_t count, float diff_scale,
                     float weight) {
  // Blends stay inside the range of a pixel, and factors inside what Factor accepts.
  const bool usual =
      weight >= 0 && weight <= 1 && diff_scale >= -Factor::kLargest && diff_scale <= Factor::kLargest;
  if (!usual) return plain::temporal.smooth(depth, history, count, diff_scale, weight);

  const Smoother smooth = {Factor(diff_scale), Factor(1 - weight), Factor(weight)};
  const auto ahead = [=](std::size_t at) {
    prefetch(depth + at, kSweepAhead);
    prefetch(history + at, kSweepAhead);
  };
  const std::size_t i = sweep(0, count, ahead, [&](std::size_t at) {
    const U16 result = smooth(U16::load(depth + at), U16::load(history + at));
    result.store(depth + at);
    result.store(history + at);
  });
  if (i < count) {
    const std::size_t rest = count - i;
    const U16 result = smooth(U16::load_first(depth + i, rest), U16::load_first(history + i, rest));
    result.store_first(depth + i, rest);
    result.store_first(history + i, rest);
  }
}

}  // namespace

extern const TemporalKernels temporal = {smooth_temporal};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
