#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

TEST(TemporalFilter, BlendsWithItsLastOutputWhereBothAreCloseAndValid) {
  FilterDriver filter("TemporalFilter");
  const Pixels first = {1000, 1000, 1000, 0, 1000};
  EXPECT_EQ(filter.filtered(frame_of(first)), first) << "the first frame becomes the history";
  EXPECT_EQ(filter.filtered(frame_of({1050, 1100, 1099, 900, 0})), (Pixels{1020, 1100, 1039, 900, 0}));
  EXPECT_EQ(filter.filtered(frame_of({1050, 1050, 1039, 950, 1000})),
            (Pixels{1032, 1080, 1039, 920, 1000}))
      << "an invalid pixel starts the average again";
}

TEST(TemporalFilter, DropsItsHistoryOnANewSizeAndOnResetButNotOnConfiguration) {
  FilterDriver filter("TemporalFilter");
  filter.filtered(frame_of({1000, 1000}));
  EXPECT_EQ(filter.update({"0.9", "0.5"}), kNoError);
  EXPECT_EQ(filter.filtered(frame_of({1050, 1050})), (Pixels{1025, 1025}));
  EXPECT_EQ(filter.filtered(frame_of({1000, 1000, 1000})), (Pixels{1000, 1000, 1000}));
  EXPECT_EQ(filter.filtered(frame_of({1050, 1050})), (Pixels{1050, 1050}));
  filter.reset();
  EXPECT_EQ(filter.filtered(frame_of({1000, 1000})), (Pixels{1000, 1000}));
  EXPECT_EQ(filter.filtered(frame_of({1050, 1400})), (Pixels{1020, 1400}))
      << "with the weight and scale of a new one";
  EXPECT_EQ(filter.filtered(frame_of({1000, 1000}, 2)), (Pixels{1000, 1000})) << "transposed";
}

TEST(TemporalFilter, StoresTheScaleBeforeItChecksTheWeight) {
  FilterDriver filter("TemporalFilter");
  EXPECT_EQ(filter.update({"0.5", "2"}), out_of_range("weight"));
  filter.filtered(frame_of({1000}));
  EXPECT_EQ(filter.filtered(frame_of({1400})), (Pixels{1160}));
}

}  // namespace
}  // namespace filterprocessor
