/// Walks the processor levels that are compiled in.
#ifndef FILTERPROCESSOR_TESTS_SUPPORT_LEVELS_H
#define FILTERPROCESSOR_TESTS_SUPPORT_LEVELS_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cases/kernel_cases.h"

namespace filterprocessor {

/// Whether this program can run a level on this machine, be it emulated.
bool can_run(const KernelSet& set);

/// Skips aloud where the level cannot run.
class LevelTest : public testing::TestWithParam<const KernelSet*> {
 protected:
  void SetUp() override {
    if (!can_run(kernels())) GTEST_SKIP() << "this machine lacks " << kernels().level;
  }
  static const KernelSet& kernels() { return *GetParam(); }
  static const KernelSet& plain() { return kernel_sets().front(); }

  /// So many cases of a family end as in the plain form.
  static void expect_plain(KernelCase (*make)(Source&), std::uint32_t cases) {
    for (std::uint32_t seed = 0; seed < cases; ++seed) {
      Source source(seed);
      const KernelCase run = make(source);
      ASSERT_EQ(difference(run, kernels(), source.number<std::uint32_t>()), "") << "seed " << seed;
    }
  }
};

/// From 1 on, those to compare with the plain form.
inline auto levels_from(std::size_t first) {
  std::vector<const KernelSet*> sets;
  for (const KernelSet& set : kernel_sets().subspan(first)) sets.push_back(&set);
  return testing::ValuesIn(sets);
}

inline std::string level_test_name(const testing::TestParamInfo<const KernelSet*>& info) {
  return info.param->level;
}

#define FILTERPROCESSOR_EVERY_LEVEL(suite) \
  INSTANTIATE_TEST_SUITE_P(Levels, suite, levels_from(0), level_test_name)

}  // namespace filterprocessor

#endif
