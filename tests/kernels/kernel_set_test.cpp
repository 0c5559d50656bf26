#include "kernels/kernel_set.h"

#include <cstring>

#include <gtest/gtest.h>

namespace filterprocessor {
namespace {

TEST(KernelSet, TheBestThatTheMachineRunsIsChosenAndAWishCanLowerIt) {
  const KernelSet* best = nullptr;
  for (const KernelSet& set : kernel_sets()) {
    if (set.machine_runs()) best = &set;
  }
  const KernelChoice unasked = choose_kernels(nullptr);
  EXPECT_EQ(&unasked.kernels, best);
  EXPECT_EQ(unasked.wish, KernelChoice::granted);
  for (const char* no_level : {"", "sse", "AVX2", "avx2 "}) {
    const KernelChoice choice = choose_kernels(no_level);
    EXPECT_EQ(&choice.kernels, best);
    EXPECT_EQ(choice.wish, KernelChoice::unknown) << no_level;
  }
  for (const KernelSet& set : kernel_sets()) {
    const KernelChoice choice = choose_kernels(set.level);
    EXPECT_EQ(&choice.kernels, set.machine_runs() ? &set : best) << set.level;
    EXPECT_EQ(choice.wish, set.machine_runs() ? KernelChoice::granted : KernelChoice::lacking);
  }
  EXPECT_STREQ(kernel_sets().front().level, "scalar");
}

}  // namespace
}  // namespace filterprocessor
