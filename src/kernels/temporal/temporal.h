#ifndef FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_H
#define FILTERPROCESSOR_KERNELS_TEMPORAL_TEMPORAL_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// Temporal smoothing at one level; see depth_api_temporal_filter() for the rules. `depth` and `history`
/// hold `count` pixels each and may be the same.
struct TemporalKernels {
  using Smooth = void(std::uint16_t* depth, std::uint16_t* history, std::size_t count, float diff_scale,
                      float weight);

  Smooth* smooth;
};

namespace plain {
extern const TemporalKernels temporal;
}

}  // namespace filterprocessor

#endif
