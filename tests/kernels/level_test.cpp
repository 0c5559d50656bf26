#include "kernels/level.h"

#include <gtest/gtest.h>

#include "kernels/kernel_set.h"

namespace filterprocessor {
namespace {

TEST(Level, AWishCanLowerTheLevelAndNothingElse) {
  const Level best = choose_level(nullptr);
  EXPECT_EQ(choose_level("scalar"), Level::scalar);
  for (const char* no_level : {"", "sse", "AVX2", "avx2 "}) EXPECT_EQ(choose_level(no_level), best);
  for (const Level level : {Level::scalar, Level::avx2, Level::avx512, Level::neon}) {
    const Level chosen = choose_level(std::string(level_name(level)).c_str());
    EXPECT_EQ(chosen, machine_runs(level) ? level : best) << level_name(level);
    EXPECT_EQ(level_from_name(level_name(level)), level);
  }
}

TEST(Level, EveryCompiledLevelHasItsKernels) {
  for (const Level level : compiled_levels()) {
    ASSERT_NE(kernel_set(level), nullptr);
    EXPECT_EQ(kernel_set(level)->level, level);
  }
  EXPECT_TRUE(machine_runs(active_kernels().level));
}

}  // namespace
}  // namespace filterprocessor
