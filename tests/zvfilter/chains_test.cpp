// Chains as their users make and change them: what they refuse, what they remember, what they say of themselves.
#include <cmath>
#include <fstream>
#include <iterator>

#include "zvfilter/chain_handle.h"

namespace zvfilter {

namespace {

TEST(Texts, AreRefusedByStepTagAndKey) {
  const struct {
    const char* text;
    int step;
    const char* tag;
    const char* key;
    const char* message;  // a part of it
  } cases[] = {
      {"TemporalFilter;HoleFilingFilter:", 1, "HoleFilingFilter", "", "did you mean HoleFillingFilter?"},
      {"s=SpatialAdvancedFilter:alpah=1", 0, "s", "alpah", "did you mean alpha?"},
      {"s=SpatialAdvancedFilter:alpha=1.01", 0, "s", "alpha", "expected 0.1 to 1"},
      {"DepthResize:scale=0.05", 0, "DepthResize", "scale", "expected 0.1 to 50"},
      {"HardwareD2DCorrectionFilter:x=1", 0, "HardwareD2DCorrectionFilter", "x", "no parameters"},
      {"a=TemporalFilter\na=TemporalFilter", 1, "a", "", "tag of step 1 too"},
      {"1a=TemporalFilter", 0, "1a", "", "a letter first"},
      {R"({"version": 2, "steps": []})", -1, "", "", "version: is 2"},
      {R"({"version": 1, "stepts": []})", -1, "", "", "did you mean steps?"},
      {R"({"version": 1, "version": 1})", -1, "", "", "given twice"},
      {R"({"version": 1, "steps": [{"filter": "TemporalFilter"}, {"filter": 3}]})", 1, "", "",
       "step 2: filter: is 3; expected a text"},
      {R"({"version": 1, "steps": [{"filter": "TemporalFilter", "values": {"weight": "0.4"}}]})", 0, "",
       "", "expected a number"},
      {R"({"version": 1, "input": {"disparity": {"baseline": 50}}, "steps": []})", -1, "", "",
       "disparity.fx: is missing"}};
  for (const auto& [text, step, tag, key, message] : cases) {
    SCOPED_TRACE(text);
    zvf_error error = {};
    EXPECT_EQ(zvf_chain_parse(text, &error), nullptr);
    EXPECT_EQ(error.code, ZVF_BAD_CHAIN);
    EXPECT_EQ(error.step, step);
    EXPECT_STREQ(error.tag, tag);
    EXPECT_STREQ(error.key, key);
    EXPECT_TRUE(has(error.message, message)) << error.message;
    EXPECT_EQ(zvf_chain_parse(text, nullptr), nullptr);
  }
}

TEST(Chain, KeepsAllThatItsFileSays) {
  const std::string file =
      R"({"version": 1, "description": "d", "input": {"width": 64, "height": 48, "pixelType": "disparity",
    "bits": 14, "valueScale": 0.1, "disparity": {"baseline": 40.5, "fx": 300.25}, "metadata": {"32": -3}},
    "steps": [{"filter": "TemporalFilter", "tag": "t", "enabled": false, "values": {"weight": 0.123456789}},
              {"filter": "TemporalFilter"}, {"filter": "HoleFillingFilter", "values": {}}]})";
  const ChainHandle chain = parse(file);
  const std::string json = zvf_chain_json(chain.get(), nullptr);
  EXPECT_EQ(zvf_chain_json(parse(json).get(), nullptr), json);
  zvf_input input;
  ASSERT_TRUE(zvf_chain_input(chain.get(), &input));
  EXPECT_EQ(input.pixel_type, ZVF_DISPARITY);
  EXPECT_EQ(input.geometry.fx, 300.25);
  EXPECT_EQ(input.geometry.bits, 14);
  EXPECT_EQ(input.correction, -3);
  zvf_step step;
  ASSERT_EQ(zvf_chain_step(chain.get(), 0, &step, nullptr), ZVF_OK);
  EXPECT_STREQ(step.tag, "t");
  EXPECT_FALSE(step.enabled);
  ASSERT_EQ(zvf_chain_step(chain.get(), 1, &step, nullptr), ZVF_OK);
  EXPECT_TRUE(step.as_made);
  ASSERT_EQ(zvf_chain_step(chain.get(), 2, &step, nullptr), ZVF_OK);
  EXPECT_FALSE(step.as_made);
  EXPECT_TRUE(has(json, "0.123456789"));

  const ChainHandle unsized = parse(R"({"version": 1, "input": {"valueScale": 0.1}, "steps": []})");
  EXPECT_TRUE(has(zvf_chain_json(unsized.get(), nullptr), "\"valueScale\": 0.1\n"));
  EXPECT_EQ(zvf_chain_output(unsized.get(), &input, nullptr), ZVF_BAD_INPUT);
}

TEST(Chain, RefusesToRunWithoutWhatItsStepsNeed) {
  const Pixels frame(64 * 48, 1000);
  Pixels result(frame.size());
  zvf_error error = {};
  const ChainHandle chain = parse("DisparityTransform; smooth=SpatialAdvancedFilter:");
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), ZVF_BAD_INPUT);
  zvf_input input = zvf_input_of(64, 48);
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, &error), ZVF_OK);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), ZVF_BAD_INPUT);
  EXPECT_STREQ(error.tag, "smooth");
  EXPECT_TRUE(has(error.message, "baseline"));
  EXPECT_EQ(zvf_chain_enable(chain.get(), 1, false, &error), ZVF_OK);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), ZVF_OK);
  input.pixel_type = ZVF_DISPARITY;
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, &error), ZVF_OK);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), ZVF_BAD_INPUT);
}

TEST(Chain, RefusesInputsAndArgumentsThatCannotBe) {
  const ChainHandle chain = parse("HoleFillingFilter");
  const Pixels frame(64 * 48);
  Pixels result(frame.size());
  const auto refused = [&](auto change) {
    zvf_input input = zvf_input_of(64, 48);
    change(input);
    zvf_error error = {};
    EXPECT_EQ(zvf_chain_set_input(chain.get(), &input, &error), ZVF_BAD_INPUT);
    return std::string(error.key);
  };
  EXPECT_EQ(refused([](zvf_input& i) { i.width = 0; }), "width");
  EXPECT_EQ(refused([](zvf_input& i) { i.height = 32768; }), "height");
  EXPECT_EQ(refused([](zvf_input& i) { i.bits = 17; }), "bits");
  EXPECT_EQ(refused([](zvf_input& i) { i.value_scale = std::nanf(""); }), "value_scale");
  const zvf_input input = zvf_input_of(64, 48);
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  zvf_error error = {};
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 127, result.data(), 0, &error), ZVF_BAD_INPUT);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 127, &error), ZVF_BAD_INPUT);
  EXPECT_EQ(zvf_chain_run(chain.get(), nullptr, 0, result.data(), 0, &error), ZVF_BAD_INPUT);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, nullptr, 0, &error), ZVF_BAD_INPUT);
  EXPECT_EQ(zvf_chain_remove(chain.get(), 1, &error), ZVF_BAD_ARGUMENT);
  EXPECT_EQ(zvf_chain_insert(chain.get(), 2, "TemporalFilter", &error), ZVF_BAD_ARGUMENT);
  EXPECT_EQ(zvf_chain_load("/nowhere/chain.json", &error), nullptr);
  EXPECT_EQ(error.code, ZVF_NO_FILE);
}

TEST(Chain, KnowsItsOutputBefore) {
  const ChainHandle chain = chain_for("DisparityTransform:; DepthResize:scale=0.5,ex_left=3", 65, 47);
  zvf_input input, output;
  ASSERT_TRUE(zvf_chain_input(chain.get(), &input));
  input.pixel_type = ZVF_DISPARITY;
  input.has_intrinsics = true;
  input.intrinsics = {600, 600, 32, 24};
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  ASSERT_EQ(zvf_chain_output(chain.get(), &output, nullptr), ZVF_OK);
  EXPECT_EQ(output.width, 35u);
  EXPECT_EQ(output.height, 23u);
  EXPECT_EQ(output.pixel_type, ZVF_DEPTH);
  EXPECT_TRUE(output.has_intrinsics);
  ASSERT_EQ(zvf_chain_set(chain.get(), 1, "scale=2,ex_left=0", nullptr), ZVF_OK);
  ASSERT_EQ(zvf_chain_output(chain.get(), &output, nullptr), ZVF_OK);
  EXPECT_EQ(output.width, 130u);
  ASSERT_EQ(zvf_chain_enable(chain.get(), 1, false, nullptr), ZVF_OK);
  ASSERT_EQ(zvf_chain_output(chain.get(), &output, nullptr), ZVF_OK);
  EXPECT_EQ(output.width, 65u);
}

/// A frame whose pixels depend on its number.
Pixels frame(unsigned number) {
  Pixels pixels(64 * 48);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] = i % 11 == 0 ? 0 : static_cast<std::uint16_t>(1000 + i % 64 + 5 * number);
  }
  return pixels;
}

constexpr const char* kTemporal = "t=TemporalFilter:weight=0.5,diff_scale=1";

TEST(Chain, RemembersFramesUntilItIsReset) {
  const ChainHandle chain = chain_for(kTemporal, 64, 48);
  const Pixels first = run(chain, frame(0)), second = run(chain, frame(9));
  EXPECT_NE(second, frame(9));
  ASSERT_EQ(zvf_chain_reset(chain.get(), nullptr), ZVF_OK);
  EXPECT_EQ(run(chain, frame(0)), first);
  EXPECT_EQ(run(chain, frame(9)), second) << "its values stay";
  const ChainHandle copy(zvf_chain_copy(chain.get(), nullptr));
  EXPECT_EQ(run(copy, frame(0)), first);
  // Another input is another sequence; the same one is not.
  zvf_input input;
  ASSERT_TRUE(zvf_chain_input(chain.get(), &input));
  ASSERT_EQ(zvf_chain_reset(chain.get(), nullptr), ZVF_OK);
  run(chain, frame(0));
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  EXPECT_EQ(run(chain, frame(9)), second);
  input.geometry.baseline += 1;
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  EXPECT_EQ(run(chain, frame(9)), run(chain_for(kTemporal, 64, 48), frame(9)));
}

TEST(Chain, ChangesBetweenFramesAndKeepsHistory) {
  const ChainHandle chain = chain_for(std::string("HoleFillingFilter;") + kTemporal, 64, 48);
  run(chain, frame(0));
  zvf_error error = {};
  EXPECT_EQ(zvf_chain_set(chain.get(), 1, "weight=1,diff_scale=7", &error), ZVF_BAD_CHAIN);
  EXPECT_STREQ(error.key, "diff_scale");
  double weight = 0;
  EXPECT_EQ(zvf_chain_get(chain.get(), 1, "weight", &weight, nullptr), ZVF_OK);
  EXPECT_EQ(weight, 0.5) << "all values or none";
  EXPECT_EQ(zvf_chain_get(chain.get(), 1, "wait", &weight, &error), ZVF_BAD_CHAIN);
  // Steps come, go and change places around the one that remembers.
  ASSERT_EQ(zvf_chain_remove(chain.get(), 0, nullptr), ZVF_OK);
  ASSERT_EQ(zvf_chain_insert(chain.get(), 1, "fill=HoleFillingFilter:hole_filling_mode=2", nullptr),
            ZVF_OK);
  ASSERT_EQ(zvf_chain_move(chain.get(), 1, 0, nullptr), ZVF_OK);
  EXPECT_EQ(zvf_chain_find(chain.get(), "fill"), 0);
  EXPECT_EQ(zvf_chain_find(chain.get(), "TemporalFilter"), 1);
  EXPECT_EQ(zvf_chain_find(chain.get(), "2"), 1);
  EXPECT_EQ(zvf_chain_find(chain.get(), "3"), -1);
  ASSERT_EQ(zvf_chain_enable(chain.get(), 0, false, nullptr), ZVF_OK);
  ASSERT_EQ(zvf_chain_set(chain.get(), 1, "weight=0.25", nullptr), ZVF_OK);
  const ChainHandle fresh = chain_for("TemporalFilter:weight=0.25,diff_scale=1", 64, 48);
  EXPECT_NE(run(chain, frame(9)), run(fresh, frame(9)));
  EXPECT_EQ(zvf_chain_set(chain.get(), 0, "hole_filling_mode=1", nullptr), ZVF_OK);
}

TEST(Filters, AreListedWithTheirParameters) {
  ASSERT_EQ(zvf_filter_count(), 9u);
  EXPECT_STREQ(zvf_filter_name(3), "SpatialAdvancedFilter");
  EXPECT_EQ(zvf_filter_name(9), nullptr);
  EXPECT_TRUE(has(zvf_filter_summary(3), "mooth"));
  EXPECT_EQ(zvf_filter_summary(9), nullptr);
  std::string with_history, resizing;
  for (std::size_t i = 0; i < zvf_filter_count(); ++i) {
    if (zvf_filter_has_history(i)) with_history.append(zvf_filter_name(i)).append(" ");
    if (zvf_filter_changes_size(i)) resizing.append(zvf_filter_name(i)).append(" ");
  }
  EXPECT_EQ(with_history, "TemporalFilter ");
  EXPECT_EQ(resizing, "DepthResize OpenNIDisparityTransform ");
  zvf_parameter parameter;
  ASSERT_TRUE(zvf_parameter_at(3, 1, &parameter));
  EXPECT_STREQ(parameter.name, "alpha");
  EXPECT_STREQ(parameter.type, "float");
  EXPECT_EQ(parameter.min, 0.1);
  EXPECT_EQ(parameter.max, 1);
  EXPECT_EQ(parameter.default_value, 0.5);
  EXPECT_FALSE(zvf_parameter_at(3, 4, &parameter));
  EXPECT_EQ(zvf_parameter_count(9), 0u);
  std::ifstream file(ZVFILTER_SCHEMA_FILE);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), zvf_chain_file_schema())
      << "make it with: zvfilter chain schema";
}

}  // namespace

}  // namespace zvfilter
