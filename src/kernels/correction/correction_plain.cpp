#include "kernels/correction/correction_plain.h"

namespace filterprocessor::plain {

void clear_depth(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth) {
  for (std::size_t i = 0; i < count; ++i) {
    if (depth_of(pixels[i], scale) == depth) pixels[i] = 0;
  }
}

}  // namespace filterprocessor::plain
