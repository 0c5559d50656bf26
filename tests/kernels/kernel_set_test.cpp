#include "kernels/kernel_set.h"

#include "support/levels.h"

namespace filterprocessor {
namespace {

class VectorLevel : public LevelTest {};
INSTANTIATE_TEST_SUITE_P(Levels, VectorLevel, levels_from(1), level_test_name);

TEST_P(VectorLevel, CorrectionEqualsThePlainForm) { expect_plain(correction_case, 2000); }
TEST_P(VectorLevel, DisparityEqualsThePlainForm) { expect_plain(disparity_case, 800); }
TEST_P(VectorLevel, HoleFillingEqualsThePlainForm) { expect_plain(hole_filling_case, 3000); }
TEST_P(VectorLevel, MarginEqualsThePlainForm) { expect_plain(margin_case, 3000); }
TEST_P(VectorLevel, ResizeEqualsThePlainForm) { expect_plain(resize_case, 2000); }
TEST_P(VectorLevel, SpatialEqualsThePlainForm) { expect_plain(spatial_case, 3000); }
TEST_P(VectorLevel, SpeckleEqualsThePlainForm) { expect_plain(speckle_case, 3000); }
TEST_P(VectorLevel, TemporalEqualsThePlainForm) { expect_plain(temporal_case, 2000); }

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
