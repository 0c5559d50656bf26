#include "filters/depth_converter.h"
#include "support/levels.h"

namespace filterprocessor {
namespace {

class DisparityLevel : public LevelTest {};
FILTERPROCESSOR_EVERY_LEVEL(DisparityLevel);

TEST_P(DisparityLevel, ConversionEqualsTheTableForEveryPixelValue) {
  Source source(4);
  Pixels codes(65536 + 5);
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::uint16_t>(i * 40503);
  Pixels depth(codes.size());
  int computing = 0, computing_packed = 0;
  for (int n = 0; n < 120; ++n) {
    const std::size_t size = std::size_t{1} << source.integer(8, 16);
    auto converter = std::visit([&](const auto& rule) { return DepthConverter(rule, size, kernels()); },
                                any_depth_rule(source));
    for (int use = 0; use < 5; ++use) {
      if (use == 3) converter = converter.with_first_entry_cleared();
      const auto entry = [&](std::size_t code) {
        return code < size ? int{converter.entries()[code]} : 0;
      };
      converter.convert(codes.data(), depth.data(), codes.size());
      for (std::size_t i = 0; i < codes.size(); ++i)
        ASSERT_EQ(depth[i], entry(codes[i])) << n << ", " << i;
      converter.convert_packed(codes.data(), depth.data(), codes.size());
      for (std::size_t i = 0; i < codes.size(); ++i) {
        ASSERT_EQ(depth[i], (entry(codes[i] >> 4) << 4 | (codes[i] & 15)) & 0xffff) << n << ", " << i;
      }
    }
    computing += converter.computes();
    computing_packed += converter.computes_packed();
  }
  if (&kernels() != &plain()) {
    EXPECT_GT(computing, 10) << "the computing form is tried";
    EXPECT_GT(computing_packed, 10);
  }
}

}  // namespace
}  // namespace filterprocessor
