#ifndef FILTERPROCESSOR_COMMON_SCALE_STEP_H
#define FILTERPROCESSOR_COMMON_SCALE_STEP_H

#include <cstdint>

#include "common/saturate.h"

namespace filterprocessor {

/// The distance in the source of neighbours in the scaled image, in 1/65536 pixel. One larger than
/// 65536 / scale where that is whole; the positions drift by that much.
inline std::uint32_t scale_step(float scale) { return saturate<std::uint32_t>(65536.0f / scale + 1.0f); }

}  // namespace filterprocessor

#endif
