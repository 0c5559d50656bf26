#include "filters/temporal_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

devhost::FrameTraits row(Pixels pixels) {
  devhost::FrameTraits traits;
  traits.width = static_cast<std::uint32_t>(pixels.size());
  traits.height = 1;
  traits.pixels = std::move(pixels);
  return traits;
}

Pixels filtered(FilterDriver& filter, Pixels pixels) {
  const devhost::Frame output = filter.process(devhost::make_frame(row(std::move(pixels))));
  EXPECT_EQ(filter.last_error(), kNoError);
  return output ? devhost::inspect(output.get()).pixels : Pixels{};
}

ErrorTexts out_of_range(const char* name) {
  return {"params out of range", "update_filter_config", name, 4};
}

TEST(TemporalFilter, BlendsWithItsLastOutputWhereBothAreCloseAndValid) {
  FilterDriver filter("TemporalFilter");
  const Pixels first = {1000, 1000, 1000, 0, 1000};
  EXPECT_EQ(filtered(filter, first), first) << "the first frame passes and becomes the history";
  EXPECT_EQ(filtered(filter, {1050, 1100, 1099, 900, 0}), (Pixels{1020, 1100, 1039, 900, 0}));
  EXPECT_EQ(filtered(filter, {1050, 1050, 1039, 950, 1000}), (Pixels{1032, 1080, 1039, 920, 1000}))
      << "an invalid pixel starts the average again";
}

TEST(TemporalFilter, DropsItsHistoryOnANewSizeAndOnResetButNotOnConfiguration) {
  FilterDriver filter("TemporalFilter");
  filtered(filter, {1000, 1000});
  EXPECT_EQ(filter.update({"0.9", "0.5"}), kNoError);
  EXPECT_EQ(filtered(filter, {1050, 1050}), (Pixels{1025, 1025}));
  EXPECT_EQ(filtered(filter, {1000, 1000, 1000}), (Pixels{1000, 1000, 1000}));
  EXPECT_EQ(filtered(filter, {1050, 1050}), (Pixels{1050, 1050}));
  filter.reset();
  EXPECT_EQ(filtered(filter, {1000, 1000}), (Pixels{1000, 1000}));
  EXPECT_EQ(filtered(filter, {1050, 1400}), (Pixels{1020, 1400}))
      << "with the weight and scale of a new one";
  devhost::FrameTraits transposed = row({1000, 1000});
  std::swap(transposed.width, transposed.height);
  EXPECT_EQ(devhost::inspect(filter.process(devhost::make_frame(transposed)).get()).pixels,
            (Pixels{1000, 1000}));
}

TEST(TemporalFilter, StoresTheScaleBeforeItChecksTheWeight) {
  FilterDriver filter("TemporalFilter");
  EXPECT_EQ(filter.update({"0.5", "2"}), out_of_range("weight"));
  filtered(filter, {1000});
  EXPECT_EQ(filtered(filter, {1400}), (Pixels{1160}));
  EXPECT_EQ(filter.update({"0.09", "0.5"}), out_of_range("diff_scale"));
  EXPECT_EQ(filter.update({"nan", "0.5"}), out_of_range("diff_scale"));
  EXPECT_EQ(filter.update({"0.1", "nan"}), out_of_range("weight"));
  EXPECT_EQ(filter.update({"0.1"}), kBadCount);
  EXPECT_EQ(filter.update({"1", "0.1"}), kNoError) << "both ends are accepted";
}

}  // namespace
}  // namespace filterprocessor
