#include "kit/report/report.h"

#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"
#include "kit/report/encoding.h"
#include "kit/report/plots.h"
#include "kit/report/sequence.h"

namespace kit {
namespace {

Frame frame_of(std::uint32_t width, std::uint32_t height, std::vector<std::uint16_t> pixels) {
  return describe_frame({width, height, std::move(pixels)}, {});
}

Frame noise(std::uint32_t width, std::uint32_t height, std::uint32_t seed) {
  std::vector<std::uint16_t> pixels(std::size_t{width} * height);
  for (std::uint16_t& pixel : pixels) {
    seed = seed * 1664525 + 1013904223;
    pixel = static_cast<std::uint16_t>(seed >> 16);
  }
  return frame_of(width, height, std::move(pixels));
}

ReportSettings one_step() {
  ReportSettings settings;
  settings.input = "frames & more";
  settings.chain_file = "{}\n";
  settings.steps = {{"Smooth", "<tag>"}};
  return settings;
}

TEST(Report, ShowsTheFirstTheLastTheMostChangedAndThoseAskedFor) {
  for (const std::optional<std::size_t> last : {std::optional<std::size_t>(), {5}}) {
    ReportSettings settings = one_step();
    settings.frames = {2};
    settings.last = last;
    Report report(settings);
    const std::vector<std::uint16_t> before = {1, 1, 1, 1};
    const std::vector<std::vector<std::uint16_t>> after = {{1, 1, 1, 1}, {1, 1, 1, 2}, {1, 1, 1, 1},
                                                           {2, 2, 2, 1}, {1, 1, 2, 2}, {1, 1, 1, 1}};
    for (std::size_t i = 0; i < after.size(); ++i)
      report.add_frame(i, "frame", {{0, frame_of(2, 2, before)}, {1, frame_of(2, 2, after[i]), 0.5}});
    std::vector<std::size_t> shown;
    for (const auto& [index, frame] : report.shown()) shown.push_back(index);
    EXPECT_EQ(shown, (std::vector<std::size_t>{0, 2, 3, 5}));
    EXPECT_EQ(report.most_changed(), 3u);
    const std::vector<StageTotals> totals = totals_of(report);
    EXPECT_DOUBLE_EQ(totals[1].changed.value(), 6.0 / 24);
    EXPECT_DOUBLE_EQ(totals[1].milliseconds, 0.5);
  }
}

TEST(Report, GivesUpDetailsRatherThanItsSize) {
  const auto page = [](std::size_t most_bytes) {
    ReportSettings settings = one_step();
    settings.most_bytes = most_bytes;
    Report report(settings);
    for (std::uint32_t i = 0; i < 3; ++i)
      report.add_frame(i, "frame", {{0, noise(80, 60, i)}, {1, noise(80, 60, i + 9), 1}});
    return report.html();
  };
  const std::string full = page(10'000'000);
  EXPECT_EQ(full.find("Left out"), std::string::npos);
  EXPECT_NE(full.find("id=\"p0-0\""), std::string::npos);
  std::size_t last = full.size();
  for (const std::size_t most : {full.size() - 1, full.size() / 2, full.size() / 3}) {
    const std::string smaller = page(most);
    EXPECT_LE(smaller.size(), most);
    EXPECT_LT(smaller.size(), last);
    EXPECT_NE(smaller.find("Left out"), std::string::npos);
    last = smaller.size();
  }
}

TEST(Report, QuotesWhatItIsGiven) {
  Report report(one_step());
  report.add_frame(0, "x", {{0, frame_of(1, 1, {5})}, {1, frame_of(1, 1, {0}), 1}});
  const std::string page = report.html();
  EXPECT_NE(page.find("<title>frames &amp; more</title>"), std::string::npos);
  EXPECT_NE(page.find("&lt;tag&gt;"), std::string::npos);
  EXPECT_EQ(page.find("<tag>"), std::string::npos);
  EXPECT_EQ(page.find("{{"), std::string::npos);
}

TEST(Report, ComparesTheWholeChainInOneUnit) {
  Frame disparity = frame_of(1, 1, {500});
  disparity.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  const Frame depth = frame_of(1, 1, {900});
  const auto ends = [](std::vector<ReportStage> stages) {
    const Ends found = ends_of(stages);
    return std::pair(found.before, found.after);
  };
  EXPECT_EQ(ends({{0, disparity}, {1, depth}, {2, depth}}), std::pair(std::size_t{1}, std::size_t{2}));
  EXPECT_EQ(ends({{0, disparity}, {1, depth}}), std::pair(std::size_t{0}, std::size_t{1}));
  EXPECT_EQ(ends({{0, depth}, {1, depth}}), std::pair(std::size_t{0}, std::size_t{1}));
}

TEST(ReportPictures, TellWhatBecameOfEachPixel) {
  const Frame before = frame_of(6, 1, {0, 0, 100, 100, 100, 100});
  const Difference difference = difference_of(before, frame_of(6, 1, {0, 100, 0, 100, 60, 150}));
  const auto& indexes = difference.picture.indexes;
  EXPECT_EQ(
      (std::vector<int>(indexes.begin(), indexes.begin() + 4)),
      (std::vector<int>{Difference::none, Difference::gained, Difference::lost, Difference::equal}));
  EXPECT_EQ(difference.limit, 50);
  EXPECT_EQ(indexes[5], difference.picture.palette.size() - 1);
  EXPECT_LT(indexes[4], indexes[5]);
  // Half the size: each pixel is set against the one at its place.
  const Difference halved =
      difference_of(frame_of(4, 2, {1, 1, 2, 2, 1, 1, 2, 2}), frame_of(2, 1, {1, 2}));
  EXPECT_EQ(halved.picture.indexes, std::vector<unsigned char>(8, Difference::equal));
}

TEST(ReportPictures, LeaveAHundredthOutOfTheirRange) {
  std::vector<std::uint16_t> pixels(1000, 0);
  for (std::size_t i = 0; i < 500; ++i) pixels[i] = static_cast<std::uint16_t>(1000 + i);
  pixels[0] = 1;
  pixels[1] = 65535;
  Frame frame = frame_of(100, 10, pixels);
  frame.value_scale = 0.5F;
  ValueCounts counts;
  counts.add(frame);
  EXPECT_NEAR(counts.robust_range().low, 502, 2);
  EXPECT_NEAR(counts.robust_range().high, 747, 2);
  EXPECT_EQ(color_index(501, {501, 747}), 1);
  EXPECT_EQ(color_index(9999, {501, 747}), 255);
  EXPECT_EQ(color_index(Meaning(frame)(0), {501, 747}), 0);
}

TEST(ReportPictures, StayWithinTheirLargestSide) {
  const IndexedPicture picture = depth_picture(noise(2000, 3, 1), {0, 65535});
  EXPECT_EQ(picture.width, 1000u);
  EXPECT_EQ(picture.height, 2u);
  EXPECT_EQ(picture.indexes.size(), 2000u);
}

TEST(ReportPlots, PutNumbersAtRoundPlaces) {
  EXPECT_EQ(axis_ticks({0, 100}, 5), (std::vector<double>{0, 20, 40, 60, 80, 100}));
  EXPECT_EQ(axis_ticks({-45, 45}, 5), (std::vector<double>{-40, -20, 0, 20, 40}));
  EXPECT_EQ(axis_ticks({437, 4890}, 6), (std::vector<double>{1000, 2000, 3000, 4000}));
  EXPECT_EQ(tick_text(-0.5), "\u22120.5");
  EXPECT_EQ(tick_text(0.1 + 0.2), "0.3");
}

TEST(ReportPlots, SayWhatTheyCutOff) {
  Plot plot{"Time", "frame", "ms", {0, 39}, {{"1", "Smooth", {}}}, Plot::Values::robust};
  for (int i = 0; i < 40; ++i) plot.lines[0].values.emplace_back(i == 20 ? 50.0 : 1.0);
  EXPECT_NE(svg_of(plot).find("1 value is above the plot"), std::string::npos);
  plot.values = Plot::Values::from_zero;
  EXPECT_EQ(svg_of(plot).find("above the plot"), std::string::npos);
}

}  // namespace
}  // namespace kit
