#include "filterprocessor/temporal.h"

#include <limits>

#include "support/levels.h"

namespace filterprocessor {
namespace {

struct TemporalLevel : LevelTest {
  /// The result for one pixel, checked in every lane and in `history` too.
  int smooth(int previous, int current, float diff_scale, float weight) const {
    const std::size_t count = 67;
    Pixels depth(count, static_cast<std::uint16_t>(current));
    Pixels history(count, static_cast<std::uint16_t>(previous));
    kernels().temporal.smooth(depth.data(), history.data(), count, diff_scale, weight);
    EXPECT_EQ(depth, Pixels(count, depth[0]));
    EXPECT_EQ(history, depth);
    return depth[0];
  }
};
FILTERPROCESSOR_EVERY_LEVEL(TemporalLevel);

TEST_P(TemporalLevel, BlendsOnlyValidPixelsThatAreStrictlyClose) {
  EXPECT_EQ(smooth(1000, 1050, 0.1f, 0.4f), 1020);
  EXPECT_EQ(smooth(1000, 1100, 0.1f, 0.4f), 1100) << "a change of exactly a tenth is a jump";
  EXPECT_EQ(smooth(1100, 1000, 0.1f, 0.4f), 1000) << "the smaller value sets the limit";
  EXPECT_EQ(smooth(1000, 0, 1.0f, 0.4f), 0);
  EXPECT_EQ(smooth(0, 1000, 1.0f, 0.4f), 1000);
  EXPECT_EQ(smooth(1, 0, 1e9f, 0.4f), 0);
  EXPECT_EQ(smooth(65535, 60000, 0.1f, 1.0f), 60000);
  EXPECT_EQ(smooth(65535, 60000, 0.1f, 0.0f), 65535);
  EXPECT_EQ(smooth(1000, 1003, 0.1f, 0.5f), 1001) << "truncated, not rounded";
  EXPECT_EQ(smooth(7, 7, 0.0f, 0.5f), 7);
}

TEST_P(TemporalLevel, ParametersOutsideTheirRangesGiveDefinedPixels) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(smooth(100, 101, nan, 0.5f), 101);
  EXPECT_EQ(smooth(100, 90, -1.0f, 0.5f), 90);
  EXPECT_EQ(smooth(100, 60000, infinity, 0.5f), 30050);
  EXPECT_EQ(smooth(100, 101, 0.1f, nan), 0);
  EXPECT_EQ(smooth(100, 101, 0.1f, -200.0f), 0) << "100 x 201 - 101 x 200 is negative";
  EXPECT_EQ(smooth(100, 101, 0.1f, infinity), 0) << "infinity less infinity";
  EXPECT_EQ(smooth(100, 101, 0.1f, 65536.0f), 100) << "65636, of which the low 16 bits stay";
  EXPECT_EQ(smooth(100, 101, 0.1f, 1e30f), 65535) << "saturates at 2^31 - 1";
}

}  // namespace
}  // namespace filterprocessor
