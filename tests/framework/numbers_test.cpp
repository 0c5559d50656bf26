#include <array>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "common/saturate.h"
#include "dev_host.h"
#include "framework/config_values.h"

namespace filterprocessor {
namespace {

TEST(Saturate, TruncatesTowardZeroAndStopsAtTheEndsOfTheRange) {
  EXPECT_EQ(saturate<std::int32_t>(2.9f), 2);
  EXPECT_EQ(saturate<std::int32_t>(-2.9f), -2);
  EXPECT_EQ(saturate<std::int32_t>(2147483648.0f), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(saturate<std::int32_t>(2147483647.5), 2147483647);
  EXPECT_EQ(saturate<std::int32_t>(-3e9f), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(saturate<std::uint32_t>(-0.5f), 0u);
  EXPECT_EQ(saturate<std::uint32_t>(-1.0f), 0u);
  EXPECT_EQ(saturate<std::uint32_t>(4294967295.0), 4294967295u);
  EXPECT_EQ(saturate<std::uint16_t>(65535.9f), 65535);
  EXPECT_EQ(saturate<std::int64_t>(1e30f), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(saturate<std::int32_t>(std::numeric_limits<float>::quiet_NaN()), 0);
  EXPECT_EQ(saturate<std::int32_t>(-std::numeric_limits<double>::infinity()),
            std::numeric_limits<std::int32_t>::min());
}

TEST(ConfigValues, ReadsWhatIsNotANumberAsZero) {
  std::array texts = {"12x", "nothing", " -7", "0.25", static_cast<const char*>(nullptr), "010"};
  const ConfigValues values(texts.size(), texts.data(), nullptr);
  EXPECT_EQ(values.integer(0), 12);
  EXPECT_EQ(values.integer(1), 0);
  EXPECT_EQ(values.integer(2), -7);
  EXPECT_EQ(values.number(3), 0.25);
  EXPECT_EQ(values.number(4), 0.0);
  EXPECT_EQ(values.integer(5), 10);
  EXPECT_EQ(ConfigValues(1, nullptr, nullptr).integer(0), 0);
}

}  // namespace
}  // namespace filterprocessor
