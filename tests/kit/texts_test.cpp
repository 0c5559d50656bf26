// What people are told of the filters, and the presets, against the filters themselves.
#include <cmath>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "filter_run.h"
#include "kit/filter/filter_description.h"
#include "kit/frame/pixel_reader.h"
#include "kit/texts/filter_texts.h"
#include "kit/texts/presets.h"
#include "refusal.h"

namespace kit {
namespace {

/// A sequence whose codes are those that every filter can read.
const Frames& disparity() {
  static const Frames frames = camera_frames("frames=3,size=320x240,pack-mode=1");
  return frames;
}

const Frames& depth() {
  static const Frames frames = run_chain("DisparityTransform", disparity());
  return frames;
}

TEST(FilterTexts, AreThereForEveryFilterAndParameterAndNoOther) {
  const auto described = own_filters().describe();
  ASSERT_EQ(described.size(), filter_texts().size());
  for (std::size_t i = 0; i < described.size(); ++i) {
    const FilterText& text = filter_texts()[i];
    SCOPED_TRACE(text.name);
    EXPECT_EQ(described[i].name, text.name);
    ASSERT_EQ(described[i].parameters.size(), text.parameters.size());
    for (std::size_t p = 0; p < text.parameters.size(); ++p) {
      const SchemaParameter& schema = described[i].parameters[p];
      const ParameterText& parameter = text.parameters[p];
      EXPECT_EQ(schema.name, parameter.name);
      EXPECT_TRUE(parameter.meaning.ends_with('.')) << parameter.name;
      if (parameter.choices.empty()) continue;
      EXPECT_EQ(concat(parameter.choices.front().value), schema.min);
      EXPECT_EQ(concat(parameter.choices.back().value), schema.max);
    }
  }
  const auto list = nlohmann::json::parse(to_json(described));
  EXPECT_EQ(list[1]["parameters"][0]["choices"][2]["name"], "farthest");
  EXPECT_EQ(list[4]["asMade"], "As with its defaults.");
  EXPECT_EQ(text_of("TemporalFilter", "wait"), nullptr);
  EXPECT_EQ(text_of("Other", "weight"), nullptr);
}

TEST(FilterTexts, SayWhatAFilterAsMadeDoes) {
  for (const FilterText& text : filter_texts()) {
    SCOPED_TRACE(text.name);
    const bool converts = text.name.ends_with("Transform");
    Frames inputs = converts ? disparity() : depth();
    if (converts) {  // from a near depth to a far one
      for (std::size_t i = 0; i < inputs[0].pixels.size(); ++i)
        inputs[0].pixels[i] = static_cast<std::uint16_t>(3 * i);
    }
    const std::string name(text.name);
    const bool same = run_chain(name, inputs)[0].pixels == run_chain(name + ':', inputs)[0].pixels;
    const bool told = text.as_made.starts_with("As ") || text.name == "DepthResize";
    EXPECT_EQ(same, told);
  }
  EXPECT_EQ(run_chain("DepthResize", depth())[0].pixels, depth()[0].pixels);
}

double valid(const Frames& frames) { return static_cast<double>(count_valid(frames.front())); }
double pixel_count(const Frames& frames) { return static_cast<double>(frames.front().pixels.size()); }
double roughness(const Frames& frames) {
  double sum = 0;
  const auto& pixels = frames.front().pixels;
  for (std::size_t i = 1; i < pixels.size(); ++i) sum += std::abs(pixels[i] - pixels[i - 1]);
  return sum;
}
double change(const Frames& frames) {
  double sum = 0;
  for (std::size_t i = 0; i < frames[1].pixels.size(); ++i)
    sum += std::abs(frames[2].pixels[i] - frames[1].pixels[i]);
  return sum;
}

TEST(FilterTexts, SayWhatALargerValueDoes) {
  struct Direction {
    std::string start;
    double (*measure)(const Frames&);
    int sign;
  };
  const std::vector<Direction> known = {
      {"larger removes more", valid, -1},
      {"larger removes less", valid, 1},
      {"larger joins more, so it removes less", valid, 1},
      {"larger fills more", valid, 1},
      {"larger sees farther", valid, 1},
      {"larger smooths less", roughness, 1},
      {"larger smooths", roughness, -1},
      {"larger steadies more", change, -1},
      {"larger steadies less", change, 1},
      {"larger gives a larger frame", pixel_count, 1},
      {"larger reaches farther into the frame", valid, -1},
  };
  struct Trial {
    std::string filter, parameter, low, high, others;
  };
  const Trial trials[] = {
    {"DisparityTransform", "max_depth", "1500", "3000", ""},
    {"DisparityTransform", "min_depth", "500", "1500", ",max_depth=65535"},
    {"OpenNIDisparityTransform", "min_depth", "500", "1500", ""},
    {"OpenNIDisparityTransform", "x_set", "0", "40", ",dst_width=320,dst_height=240"},
    {"OpenNIDisparityTransform", "y_set", "0", "40", ",dst_width=320,dst_height=240"},
    {"NoiseRemovalFilter", "max_size", "100", "1000", ",min_diff=64"},
    {"NoiseRemovalFilter", "min_diff", "32", "256", ",max_size=1000"},
    {"NoiseRemovalFilter", "width", "320", "1280", ",min_diff=64,max_size=1000"},
    {"NoiseRemovalFilter", "height", "200", "800", ",min_diff=64,max_size=1000"},
    {"SpatialAdvancedFilter", "magnitude", "1", "3", ""},
    {"SpatialAdvancedFilter", "disp_diff", "20", "200", ""},
#if !defined(__aarch64__)
    {"SpatialAdvancedFilter", "alpha", "0.2", "0.9", ""},
#endif
    {"SpatialAdvancedFilter", "radius", "1", "8", ""},
    {"TemporalFilter", "diff_scale", "0.1", "0.5", ""},
    {"TemporalFilter", "weight", "0.1", "0.9", ""},
    {"DepthResize", "scale", "0.5", "2", ""},
    {"EdgeNoiseRemovalFilter", "margin_x_th", "10", "60", ",limit_x_th=640"},
    {"EdgeNoiseRemovalFilter", "margin_y_th", "10", "60", ",limit_y_th=400,enable_vertical_direction=1"},
    {"EdgeNoiseRemovalFilter", "limit_x_th", "10", "640", ""},
    {"EdgeNoiseRemovalFilter", "limit_y_th", "8", "400", ",enable_vertical_direction=1"},
    {"EdgeNoiseRemovalFilter", "width", "320", "1280", ",limit_x_th=640"},
    {"EdgeNoiseRemovalFilter", "height", "200", "800", ",limit_y_th=400,enable_vertical_direction=1"},
  };
  for (const Trial& trial : trials) {
    SCOPED_TRACE(trial.filter + '.' + trial.parameter);
    const std::string_view told = text_of(trial.filter, trial.parameter)->direction;
    const auto direction = std::find_if(known.begin(), known.end(),
                                        [&](const Direction& d) { return told.starts_with(d.start); });
    ASSERT_NE(direction, known.end()) << told;
    const auto measure = [&](const std::string& value) {
      const std::string step = trial.filter + ':' + trial.parameter + '=' + value + trial.others;
      return direction->measure(
          run_chain(step, trial.filter.ends_with("Transform") ? disparity() : depth()));
    };
    EXPECT_GT(direction->sign * (measure(trial.high) - measure(trial.low)), 0) << told;
  }
}

TEST(Presets, AreTheFilesAndRunOnDisparityAndDepth) {
  ASSERT_EQ(presets().size(), 6u);
  for (const Preset& preset : presets()) {
    SCOPED_TRACE(preset.name);
    std::ifstream file(std::string(KIT_PRESETS) + '/' + std::string(preset.name) + ".json");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), preset.chain);
    EXPECT_TRUE(parse_chain(preset.chain, "preset").description.ends_with('.'));
    const std::string chain(preset_named(preset.name).chain);
    const Frame result = run_chain(chain, disparity())[2];
    EXPECT_EQ(result.pixel_type, ZV_PIXEL_TYPE_DEPTH);
    EXPECT_FLOAT_EQ(result.value_scale, preset.name == "tenth-millimetres" ? 0.1f : 1.0f);
    EXPECT_GT(count_valid(result), result.pixels.size() / 3);
    EXPECT_EQ(run_chain(chain, depth())[2].width, 320u);
  }
  EXPECT_EQ(refusal(Error::Kind::bad_request, [] { preset_named("lihgt"); }),
            "unknown preset lihgt; did you mean light?");
}

}  // namespace
}  // namespace kit
