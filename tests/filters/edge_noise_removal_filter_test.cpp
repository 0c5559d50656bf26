#include "filters/edge_noise_removal_filter.h"

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

using Parameters = EdgeNoiseRemovalFilter::Parameters;

devhost::FrameTraits full(std::uint32_t width, std::uint32_t height) {
  devhost::FrameTraits traits;
  traits.width = width;
  traits.height = height;
  traits.pixels.resize(std::size_t{width} * height, 1000);
  return traits;
}

/// How many columns and rows of a full frame were cleared at each border; opposite ones must be the same.
struct Cleared {
  std::size_t left, top;
  bool operator==(const Cleared&) const = default;
};
Cleared cleared(FilterDriver& filter, std::uint32_t width, std::uint32_t height) {
  const devhost::Frame output = filter.process(devhost::make_frame(full(width, height)));
  EXPECT_TRUE(output) << filter.last_error();
  if (!output) return {};
  const Pixels pixels = devhost::inspect(output.get()).pixels;
  const std::size_t centre = std::size_t{height} / 2 * width;
  Cleared result = {};
  while (result.left < width && pixels[centre + result.left] == 0) ++result.left;
  while (result.top < height && pixels[result.top * width + width / 2] == 0) ++result.top;
  Cleared opposite = {};
  while (opposite.left < width && pixels[centre + width - 1 - opposite.left] == 0) ++opposite.left;
  while (opposite.top < height && pixels[(height - 1 - opposite.top) * width + width / 2] == 0) {
    ++opposite.top;
  }
  EXPECT_EQ(opposite, result);
  return result;
}

std::vector<std::string> config(int margin_x, int margin_y, int limit_x, int limit_y, int vertical,
                                int width, int height) {
  std::vector<std::string> values;
  for (const int value : {margin_x, margin_y, limit_x, limit_y, vertical, width, height}) {
    values.push_back(std::to_string(value));
  }
  return values;
}

TEST(EdgeNoiseRemovalFilter, ScalesItsThresholdsInBothDirectionsFromTheStart) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{6, 6}));
  EXPECT_EQ(cleared(filter, 640, 400), (Cleared{3, 3}));
  EXPECT_EQ(cleared(filter, 848, 480), (Cleared{3, 3}));
  EXPECT_EQ(cleared(filter, 160, 100), (Cleared{0, 0})) << "0.75 is no pixel";
  EXPECT_EQ(filter.update(config(8, 4, 70, 30, 0, 640, 400)), kNoError);
  EXPECT_EQ(cleared(filter, 640, 400), (Cleared{8, 0}));
  EXPECT_EQ(cleared(filter, 320, 400), (Cleared{4, 0}));
  filter.reset();
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{6, 6})) << "vertically again, whatever the schema says";
}

TEST(EdgeNoiseRemovalFilter, WorksOutItsParametersInFloatsTruncated) {
  EdgeNoiseRemovalFilter filter;
  zv_error* error = nullptr;
  const Parameters p = filter.updateConfig(848, 480, &error);
  EXPECT_EQ(p, (Parameters{3, 3, 46, 18, 848, 480, 1}));
  EXPECT_EQ(filter.updateConfig(1280, 800, &error), Parameters{});
  EXPECT_EQ(error, nullptr);
  for (const auto& [width, height] : {std::pair{0u, 5u}, {5u, 0u}, {1u, 1u}}) {
    error = nullptr;
    EXPECT_EQ(filter.updateConfig(width, height, &error), Parameters{}) << "unscaled";
    EXPECT_EQ(texts_of(error), (ErrorTexts{"invalid params", "updateConfig", "width||height", 4}));
  }
}

/// Working height is compared with the frame's width, so a frame across the anchor's size is taken for
/// one of that size.
TEST(EdgeNoiseRemovalFilter, ATransposedFrameRunsWithTheRowsOfTheAnchor) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  const devhost::Frame output = filter.process(devhost::make_frame(full(800, 1280)));
  FilterDriver upright("EdgeNoiseRemovalFilter");
  const devhost::Frame expected = upright.process(devhost::make_frame(full(1280, 800)));
  EXPECT_EQ(devhost::inspect(output.get()).pixels, devhost::inspect(expected.get()).pixels);
  EXPECT_EQ(devhost::inspect(output.get()).width, 800u);
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{3, 4}));
  EXPECT_EQ(cleared(filter, 800, 1280), (Cleared{3, 9})) << "once scaled for another size, it is scaled";
}

/// Only square frames keep the working parameters, and frames across the size they were made for.
TEST(EdgeNoiseRemovalFilter, AConfigurationCountsFromTheNextFrameOnce) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{3, 4}));
  EXPECT_EQ(filter.update(config(12, 8, 70, 30, 1, 1280, 800)), kNoError);
  EXPECT_EQ(cleared(filter, 640, 640), (Cleared{6, 6}));

  const auto runs_across = [](FilterDriver& across, std::uint32_t width, std::uint32_t height) {
    const devhost::Frame output = across.process(devhost::make_frame(full(width, height)));
    const Pixels pixels = devhost::inspect(output.get()).pixels;
    return pixels[std::size_t{height} * (width / 2)] == 0;  // where a row of the other shape begins
  };
  FilterDriver same("EdgeNoiseRemovalFilter");
  EXPECT_EQ(same.update(config(6, 6, 70, 30, 1, 1280, 800)), kNoError);
  EXPECT_TRUE(runs_across(same, 800, 1280)) << "the same values change nothing";
  EXPECT_EQ(same.update(config(6, 6, 70, 30, 0, 640, 400)), kNoError);
  EXPECT_EQ(cleared(same, 640, 400), (Cleared{6, 0}));
  EXPECT_TRUE(runs_across(same, 400, 640)) << "the change has been taken in";
  same.reset();
  EXPECT_TRUE(runs_across(same, 800, 1280)) << "as a new filter";
}

TEST(EdgeNoiseRemovalFilter, AMarginAboveItsLimitFailsEveryFrameOnly) {
  const ErrorTexts failed = {"edge noise removal filter error", "filter_process",
                             "EdgeNoiseRemovalFilter", 0};
  FilterDriver filter("EdgeNoiseRemovalFilter");
  EXPECT_EQ(filter.update(config(80, 6, 70, 30, 0, 1280, 800)), kNoError);
  for (int n = 0; n < 2; ++n) {
    EXPECT_FALSE(filter.process(devhost::make_frame(full(1280, 800))));
    EXPECT_EQ(filter.last_error(), failed);
  }
  EXPECT_EQ(filter.update(config(70, 31, 70, 30, 0, 1280, 800)), kNoError);
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{70, 0})) << "only the rows' margin counts then";
}

TEST(EdgeNoiseRemovalFilter, AFailedScalingIsTriedAgain) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  const ErrorTexts failed = {"invalid params", "updateConfig", "width||height", 4};
  for (int n = 0; n < 2; ++n) {
    const std::string printed =
        FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(full(2, 1)))); });
    EXPECT_EQ(filter.last_error(), failed);
    EXPECT_EQ(printed,
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

TEST(EdgeNoiseRemovalFilter, ChecksItsParametersInOrderAndStoresAllOrNone) {
  FilterDriver filter("EdgeNoiseRemovalFilter");
  const auto refused = [](const char* name) {
    return ErrorTexts{"params out of range", "update_filter_config", name, 4};
  };
  EXPECT_EQ(filter.update(config(0, 0, 0, 0, 2, 0, 0)), refused("margin_x_th"));
  EXPECT_EQ(filter.update(config(9, 401, 0, 0, 2, 0, 0)), refused("margin_y_th"));
  EXPECT_EQ(filter.update(config(9, 9, 641, 0, 2, 0, 0)), refused("limit_x_th"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 0, 2, 0, 0)), refused("limit_y_th"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 30, 2, 0, 0)), refused("enable_vertical_direction"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 30, -1, 0, 0)), refused("enable_vertical_direction"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 30, 0, 1281, 0)), refused("width"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 30, 0, 0, 0)), refused("width"));
  EXPECT_EQ(filter.update(config(9, 9, 70, 30, 0, 1280, 1025)), refused("height"));
  EXPECT_EQ(filter.update({"9"}), kBadCount);
  EXPECT_EQ(cleared(filter, 1280, 800), (Cleared{6, 6}));
  EXPECT_EQ(filter.update(config(640, 400, 640, 400, 1, 1280, 1024)), kNoError);
}

}  // namespace
}  // namespace filterprocessor
