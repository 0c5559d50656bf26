/// Walks the processor levels that are compiled in.
#ifndef FILTERPROCESSOR_TESTS_SUPPORT_LEVELS_H
#define FILTERPROCESSOR_TESTS_SUPPORT_LEVELS_H

#include <string>

#include <gtest/gtest.h>

#include "kernels/kernel_set.h"

namespace filterprocessor {

/// Whether this program can run a level on this machine, be it emulated.
bool can_run(Level level);

/// Skips aloud where the level cannot run.
class LevelTest : public testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    if (!can_run(GetParam())) GTEST_SKIP() << "this machine lacks " << level_name(GetParam());
  }
  static const KernelSet& kernels() { return *kernel_set(GetParam()); }
  static const KernelSet& plain() { return *kernel_set(Level::scalar); }
};

inline auto every_level() {
  const auto levels = compiled_levels();
  return testing::ValuesIn(levels.begin(), levels.end());
}

/// Those to compare with the plain form.
inline auto vector_levels() {
  const auto levels = compiled_levels();
  return testing::ValuesIn(levels.begin() + 1, levels.end());
}

inline std::string level_test_name(const testing::TestParamInfo<Level>& info) {
  return std::string(level_name(info.param));
}

#define FILTERPROCESSOR_EVERY_LEVEL(suite) \
  INSTANTIATE_TEST_SUITE_P(Levels, suite, every_level(), level_test_name)
#define FILTERPROCESSOR_VECTOR_LEVELS(suite) \
  INSTANTIATE_TEST_SUITE_P(Levels, suite, vector_levels(), level_test_name)

}  // namespace filterprocessor

#endif
