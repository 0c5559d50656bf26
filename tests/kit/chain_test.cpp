// Chains as texts, and what is known of the filters that a chain may name.
#include "kit/pipeline/chain.h"

#include <gtest/gtest.h>

#include "filterprocessor/host.h"
#include "kit/common/suggestions.h"
#include "kit/plugin/filter_behaviour.h"
#include "refusal.h"

namespace kit {
namespace {

using Texts = std::vector<std::string>;

const auto kSchema = parse_schema(
    "count, integer, -5, 10, 1, 3, x\nratio, float, 0.1, 1, 0.01, 0.5, x\nsmooth, bool, 0, 1, 1, 1, x\n"
    "limit, uint32_t, 1, 65535, 1, 100, x\n");

std::string refusal(std::string_view text) {
  return refusal(Error::Kind::bad_request, [&] {
    const Step step = parse_step(text);
    configuration_values(step.filter, step.values.value_or(Values{}), kSchema);
  });
}

TEST(Chain, RefusesMalformedRequests) {
  EXPECT_EQ(refusal(":count=1"), "no filter name in \":count=1\"; expected NAME or NAME:key=value,...");
  for (const char* pair : {"count", "=1", "count=", ""}) {
    EXPECT_EQ(refusal(concat("F:smooth=1,", pair)),
              concat("F: \"", pair, "\" is not of the form key=value"));
  }
  EXPECT_EQ(refusal("F:count=1,count=1"), "F: count is given twice");
  EXPECT_EQ(refusal("F:cuont=1"), "F: unknown key cuont; did you mean count?");
  EXPECT_EQ(refusal("F:zzzzzz=1"), "F: unknown key zzzzzz; known: count, ratio, smooth, limit");
}

TEST(Chain, ChecksTheSyntaxOfValuesByType) {
  for (const char* value : {"7", "-7", "+7", "2147483647"})
    EXPECT_EQ(refusal(concat("F:count=", value)), "");
  for (const char* value : {"x", "1.5", "1e3", "0x10", " 1", "1 ", "2147483648", "+-1", "--1"}) {
    EXPECT_EQ(refusal(concat("F:count=", value)),
              concat("F: count=", value, " is not a whole number of at most 32 bits"));
  }
  for (const char* value : {"1", "-.5", "1e-3", "+2."}) EXPECT_EQ(refusal(concat("F:ratio=", value)), "");
  for (const char* value : {"nan", "inf", "1e999", "0.5x", "+"}) {
    EXPECT_EQ(refusal(concat("F:ratio=", value)), concat("F: ratio=", value, " is not a number"));
  }
  EXPECT_EQ(refusal("F:smooth=2"), "F: smooth=2 is not 0 or 1");
  EXPECT_EQ(refusal("F:limit=1.0"), "F: limit=1.0 is not a whole number of at most 32 bits");
}

TEST(Suggestions, CountEditsAndOfferTheNearest) {
  EXPECT_EQ(edit_distance("", "abc"), 3u);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3u);
  EXPECT_EQ(edit_distance("same", "same"), 0u);
  const Texts names = {"HoleFillingFilter", "TemporalFilter", "width", "dst_width"};
  EXPECT_EQ(suggest("temporalfliter", names), "did you mean TemporalFilter?");
  EXPECT_EQ(suggest("HoleFilling", names), "did you mean HoleFillingFilter?");
  EXPECT_EQ(suggest("hat", {"cat", "bat", "dog"}), "did you mean cat or bat?");
  EXPECT_EQ(suggest("quite another", names),
            "known: HoleFillingFilter, TemporalFilter, width, dst_width");
  EXPECT_EQ(suggest("any", {}), "there is none");
}

/// The warnings of one filter whose schema is one line.
Texts warnings(std::string_view filter, std::string_view line, const std::string& value) {
  return configuration_warnings(filter, parse_schema(line), {value});
}

TEST(FilterBehaviour, TellsWhatBecomesOfValuesOutsideTheirRanges) {
  const std::string_view weight = "weight, float, 0.1, 1, 0.01, 0.4, x";
  EXPECT_TRUE(warnings("TemporalFilter", weight, "0.1").empty());
  EXPECT_TRUE(warnings("TemporalFilter", weight, "1.00000001").empty());  // 1 in 32 bits
  EXPECT_EQ(warnings("TemporalFilter", weight, "2"),
            Texts{"TemporalFilter: weight=2 is outside the schema's 0.1 to 1; "
                  "the filter takes 0.1 to 1 and will refuse it"});
  const std::string_view height = "height, integer, 1, 800, 1, 480, x";
  EXPECT_EQ(warnings("NoiseRemovalFilter", height, "1000"),
            Texts{"NoiseRemovalFilter: height=1000 is outside the schema's 1 to 800; "
                  "the filter takes 1 to 1024 and will use it"});
  EXPECT_EQ(warnings("DepthResize", "scale, float, 0.01, 50, 0.01, 1, x", "0.05"),
            Texts{"DepthResize: scale=0.05 is inside the schema's 0.01 to 50; "
                  "the filter takes 0.1 to 50 and will refuse it"});
  EXPECT_EQ(warnings("DepthResize", "ex_left, integer, -640, 640, 1, 0, x", "1000"),
            Texts{"DepthResize: ex_left=1000 is outside the schema's -640 to 640; "
                  "the filter takes any value and will use it"});
}

TEST(FilterBehaviour, TellsOfDepthLimitsThatAreDroppedSilently) {
  const auto schema = parse_schema(
      "max_depth, uint32_t, 1, 65535, 1, 10000, x\nmin_depth, uint32_t, 1, 65535, 1, 100, x\n"
      "depth_uint, float, 0.001, 10.0, 0.001, 1.0, x");
  const auto limits = [&](std::string_view filter, const Texts& values) {
    const Texts lines = configuration_warnings(filter, schema, values);
    return lines.size() == 1 ? lines[0] : concat(lines.size(), " lines");
  };
  EXPECT_EQ(limits("DisparityTransform", {"10000", "100", "1.0"}), "0 lines");
  EXPECT_EQ(limits("DisparityTransform", {"65536", "100", "1.0"}),
            "DisparityTransform: max_depth=65536 is outside the schema's 1 to 65535; the filter takes 1 "
            "to 65535 "
            "and will ignore max_depth, min_depth and depth_uint together, without an error");
  EXPECT_EQ(limits("DisparityTransform", {"65535", "100", "1"}),
            "DisparityTransform: min_depth=100 changes alone, max_depth=65535 and depth_uint=1 being the "
            "filter's "
            "initial values; the filter will drop it without an error and keep min_depth 0");
  EXPECT_EQ(limits("OpenNIDisparityTransform", {"10000", "100", "1.0"}), "0 lines");
  EXPECT_NE(limits("OpenNIDisparityTransform", {"10000", "200", "1.0"}).find("keep min_depth 100"),
            std::string::npos);
  EXPECT_EQ(limits("OpenNIDisparityTransform", {"10000", "200", "0.5"}), "0 lines");
}

TEST(FilterBehaviour, KnowsWhoReadsTheGeometry) {
  EXPECT_TRUE(uses_geometry("SpatialAdvancedFilter", ZV_PIXEL_TYPE_DEPTH));
  EXPECT_FALSE(uses_geometry("SpatialAdvancedFilter", ZV_PIXEL_TYPE_LINEAR_DEPTH));
  EXPECT_FALSE(uses_geometry("DisparityTransform", ZV_PIXEL_TYPE_DEPTH));
  EXPECT_TRUE(uses_geometry("DisparityTransform", ZV_PIXEL_TYPE_DISPARITY));
  EXPECT_FALSE(uses_geometry("HoleFillingFilter", ZV_PIXEL_TYPE_DEPTH));
  EXPECT_TRUE(uses_geometry("A filter unknown here", ZV_PIXEL_TYPE_DEPTH));
}

}  // namespace
}  // namespace kit
