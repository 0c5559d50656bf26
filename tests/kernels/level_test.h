#ifndef FILTERPROCESSOR_TESTS_KERNELS_LEVEL_TEST_H
#define FILTERPROCESSOR_TESTS_KERNELS_LEVEL_TEST_H

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kernels/kernel_set.h"

namespace filterprocessor {

/// Runs a test once for every level compiled; levels that the machine lacks are skipped aloud.
class LevelTest : public testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    if (!machine_runs(GetParam())) {
      GTEST_SKIP() << "this machine does not run level " << level_name(GetParam());
    }
  }
  const KernelSet& kernels() const { return *kernel_set(GetParam()); }
  static const KernelSet& plain_kernels() { return *kernel_set(Level::scalar); }
};

inline std::string level_test_name(const testing::TestParamInfo<Level>& info) {
  return std::string(level_name(info.param));
}

#define FILTERPROCESSOR_TEST_ALL_LEVELS(suite)                                                    \
  INSTANTIATE_TEST_SUITE_P(Levels, suite,                                                         \
                           testing::ValuesIn(compiled_levels().begin(), compiled_levels().end()), \
                           level_test_name)

using Pixels = std::vector<std::uint16_t>;

/// Numbers for one test, the same in every run.
class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  /// Uniform over first..last.
  int integer(int first, int last) { return std::uniform_int_distribution(first, last)(engine_); }
  float real(float first, float last) { return std::uniform_real_distribution(first, last)(engine_); }
  bool one_in(int n) { return integer(1, n) == 1; }
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[integer(0, static_cast<int>(values.size()) - 1)];
  }

  /// Values that stay within `spread` of `centre` (wrapped to 16 bits), with one hole in `holes`.
  Pixels pixels(std::size_t count, int centre, int spread, int holes) {
    Pixels values(count);
    for (auto& value : values) {
      value = one_in(holes) ? std::uint16_t{0}
                            : static_cast<std::uint16_t>(centre + integer(-spread, spread));
    }
    return values;
  }

 private:
  std::mt19937 engine_;
};

}  // namespace filterprocessor

#endif
