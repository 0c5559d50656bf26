#include "filters/edge_noise_removal_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

using Parameters = EdgeNoiseRemovalFilter::Parameters;

devhost::FrameTraits full(std::uint32_t width, std::uint32_t height) {
  return frame_of(Pixels(std::size_t{width} * height, 1000), height);
}

/// How many columns and rows of a full frame were cleared at each border; opposite ones must be the same.
struct Cleared {
  std::size_t left, top;
  bool operator==(const Cleared&) const = default;
};
Cleared cleared(FilterDriver& filter, std::uint32_t width, std::uint32_t height) {
  const Pixels pixels = filter.filtered(full(width, height));
  if (pixels.empty()) return {};
  const auto count_zeros = [&](std::size_t start, std::ptrdiff_t step) {
    std::size_t count = 0;
    for (auto at = static_cast<std::ptrdiff_t>(start); pixels.at(static_cast<std::size_t>(at)) == 0;
         at += step)
      ++count;
    return count;
  };
  const std::size_t row = std::size_t{height} / 2 * width;
  const std::ptrdiff_t down = width;
  const Cleared result = {count_zeros(row, 1), count_zeros(width / 2, down)};
  const Cleared opposite = {count_zeros(row + width - 1, -1),
                            count_zeros(pixels.size() - 1 - width / 2, -down)};
  EXPECT_EQ(opposite, result);
  return result;
}

/// Whether a frame runs with the rows of one that lies across it.
bool runs_across(FilterDriver& filter, std::uint32_t width, std::uint32_t height) {
  const Pixels pixels = filter.filtered(full(width, height));
  // Where a row of the other shape begins, and none of its own.
  return pixels.at(std::size_t{height} * (width / 2 + 1)) == 0;
}

TEST(EdgeNoiseRemovalFilter, ScalesItsThresholdsInBothDirectionsFromTheStart) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{6, 6}));
  EXPECT_EQ(cleared(filter, 848, 480), (Cleared{3, 3}));
  EXPECT_EQ(cleared(filter, 160, 100), (Cleared{0, 0})) << "0.75 is no pixel";
  EXPECT_EQ(filter.update({"8", "4", "70", "30", "0", "640", "400"}), kNoError);
  EXPECT_EQ(cleared(filter, 640, 400), (Cleared{8, 0}));
  EXPECT_EQ(cleared(filter, 320, 400), (Cleared{4, 0}));
  filter.reset();
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{6, 6})) << "vertically again, whatever the schema says";
}

TEST(EdgeNoiseRemovalFilter, WorksOutItsParametersInFloatsTruncated) {
  EdgeNoiseRemovalFilter filter;
  zv_error* error = nullptr;
  EXPECT_EQ(filter.updateConfig(848, 480, &error), (Parameters{3, 3, 46, 18, 848, 480, 1}));
  EXPECT_EQ(filter.updateConfig(1280, 800, &error), Parameters{});
  EXPECT_EQ(error, nullptr);
  for (const auto& [width, height] : {std::pair{0u, 5u}, {5u, 0u}, {1u, 1u}}) {
    error = nullptr;
    EXPECT_EQ(filter.updateConfig(width, height, &error), Parameters{}) << "unscaled";
    EXPECT_EQ(texts_of(error), invalid("width||height"));
  }
}

/// Working height is compared with the frame's width, so a frame across the anchor's size is taken for
/// one of that size.
TEST(EdgeNoiseRemovalFilter, ATransposedFrameRunsWithTheRowsOfTheAnchor) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  const Pixels across = filter.filtered(full(800, 1280));
  FilterDriver upright("EdgeNoiseRemovalFilter");
  EXPECT_EQ(across, upright.filtered(full(1280, 800)));
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{3, 4}));
  EXPECT_EQ(cleared(filter, 800, 1280), (Cleared{3, 9})) << "once scaled for another size, it is scaled";
}

/// Only square frames keep the working parameters, and frames across the size they were made for.
TEST(EdgeNoiseRemovalFilter, AConfigurationCountsFromTheNextFrameOnce) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{3, 4}));
  EXPECT_EQ(filter.update({"12", "8", "70", "30", "1", "1280", "800"}), kNoError);
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{6, 6}));

  FilterDriver same("EdgeNoiseRemovalFilter");
  EXPECT_EQ(same.update({"6", "6", "70", "30", "1", "1280", "800"}), kNoError);
  EXPECT_TRUE(runs_across(same, 800, 1280)) << "the same values change nothing";
  EXPECT_EQ(same.update({"6", "6", "70", "30", "0", "640", "400"}), kNoError);
  EXPECT_EQ(cleared(same, 640, 400), (Cleared{6, 0}));
  EXPECT_TRUE(runs_across(same, 400, 640)) << "the change has been taken in";
  EXPECT_EQ(same.update({"9", "6", "70", "30", "0", "640", "400"}), kNoError);
  same.reset();
  EXPECT_TRUE(runs_across(same, 800, 1280)) << "as a new filter";
}

TEST(EdgeNoiseRemovalFilter, AMarginAboveItsLimitFailsEveryFrameOnly) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(filter.update({"80", "6", "70", "30", "0", "1280", "800"}), kNoError);
  for (int n = 0; n < 2; ++n) {
    EXPECT_EQ(
        filter.refused(full(1280, 800)),
        (ErrorTexts{"edge noise removal filter error", "filter_process", "EdgeNoiseRemovalFilter", 0}));
  }
  EXPECT_EQ(filter.update({"70", "31", "70", "30", "0", "1280", "800"}), kNoError);
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{70, 0})) << "only the rows' margin counts then";
}

TEST(EdgeNoiseRemovalFilter, AFailedScalingIsTriedAgain) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  for (int n = 0; n < 2; ++n) {
    EXPECT_EQ(filter.refused(full(2, 1)), invalid("width||height"));
    EXPECT_EQ(filter.printed(),
              "zv_error was raised: \n\tcall: updateConfig(width||height)\n"
              "\tmessage: invalid params\n\terror type: 4\n");
  }
  EXPECT_EQ(cleared(filter, 640, 400), (Cleared{3, 3}));

  EdgeNoiseRemovalFilter failed_once;
  const devhost::Frame tiny = devhost::make_frame(full(2, 1));
  const std::string printed = FilterDriver::output_of([&] {
    EXPECT_EQ(failed_once.filter_process(tiny.get(), nullptr), nullptr);
    failed_once.print_key_params();
  });
  EXPECT_NE(printed.find("current_filter_params: \nenable_direction: 1\nlimit_x_th:       70\n"),
            std::string::npos)
      << "the unscaled values are stored";
}

}  // namespace
}  // namespace filterprocessor
