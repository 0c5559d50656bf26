#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

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
  EXPECT_EQ(filter.update({"0.5", "2"}), out_of_range("weight"));
  EXPECT_EQ(filter.filtered(frame_of({1050, 1400}, 2)), (Pixels{1020, 1160}))
      << "the scale was stored before the weight was refused";
}

}  // namespace
}  // namespace filterprocessor
