#include "kernels/correction/correction.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

void clear_depth(std::uint16_t* pixels, std::size_t count, float scale, std::int32_t depth) {
  const PixelRange range = pixels_of_depth(scale, depth);
  if (range.empty) return;
  const U16 first = U16::splat(range.first);
  const U16 span = U16::splat(range.span);
  const auto cleared = [=](U16 values) { return keep(~at_most(values - first, span), values); };
  const auto ahead = [=](std::size_t at) { prefetch(pixels + at, kSweepAhead); };
  const std::size_t i =
      sweep(0, count, ahead, [&](std::size_t at) { cleared(U16::load(pixels + at)).store(pixels + at); });
  cleared(U16::load_first(pixels + i, count - i)).store_first(pixels + i, count - i);
}

}  // namespace

extern const CorrectionKernels correction = {clear_depth};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
