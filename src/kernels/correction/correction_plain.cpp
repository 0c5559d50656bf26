#include "kernels/correction/correction.h"

namespace filterprocessor::plain {

namespace {

void clear_depth(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth) {
  for (std::size_t i = 0; i < count; ++i) {
    if (depth_of(pixels[i], scale) == depth) pixels[i] = 0;
  }
}

}  // namespace

extern const CorrectionKernels correction = {clear_depth};

}  // namespace filterprocessor::plain
