// Every host call of every filter fails in turn.
#include <algorithm>
#include <map>

#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr std::int32_t kDepth = ZV_PIXEL_TYPE_DEPTH;
constexpr std::int32_t kCodes = ZV_PIXEL_TYPE_DISPARITY;
constexpr std::int32_t kLinear = ZV_PIXEL_TYPE_LINEAR_DEPTH;

struct Scenario {
  const char* name;
  const char* filter;
  std::int32_t pixel_type = kDepth;
  std::vector<std::string> configuration = {};  ///< none: as it is made
  bool corrected = true;
  bool packed = false;
  bool one_camera = false;
};

const Scenario kScenarios[] = {
    {"top", "HoleFillingFilter"},
    {"pass-through", "DisparityTransform"},
    {"plain", "DisparityTransform", kCodes, {}, false},
    {"packed, corrected", "DisparityTransform", kCodes, {"5000", "10", "0.5"}, true, true},
    {"one camera", "DisparityTransform", kCodes, {}, false, false, true},
    {"plain", "OpenNIDisparityTransform", kCodes},
    {"sampled",
     "OpenNIDisparityTransform",
     kCodes,
     {"9000", "10", "1", "20", "10", "0.5", "1", "1", "1", "1"}},
    {"nothing to correct", "HardwareD2DCorrectionFilter", kDepth, {}, false},
    {"corrected", "HardwareD2DCorrectionFilter"},
    {"depth", "NoiseRemovalFilter"},
    {"disparity", "NoiseRemovalFilter", kCodes, {"10", "16", "40", "24"}},
    {"linear depth", "NoiseRemovalFilter", kLinear},
    {"depth", "SpatialAdvancedFilter", kDepth, {"2", "0.3", "100", "4"}},
    {"disparity", "SpatialAdvancedFilter", kCodes},
    {"linear depth", "SpatialAdvancedFilter", kLinear},
    {"depth", "TemporalFilter"},
    {"both directions", "EdgeNoiseRemovalFilter"},
    {"rows", "EdgeNoiseRemovalFilter", kDepth, {"6", "6", "70", "30", "0", "40", "24"}},
    {"half size", "DepthResize", kDepth, {"20", "13", "0.5", "0", "0", "1", "0"}},
};

devhost::Frame make_input(const Scenario& scenario, bool as_set, std::uint32_t width = 40,
                          std::uint32_t height = 24) {
  devhost::FrameTraits traits = lively_frame(width, height, scenario.pixel_type, 1);
  if (!scenario.corrected) traits.metadata.clear();
  if (scenario.packed) {
    traits.format = ZV_FORMAT_PACKED_CODE;
    traits.bits = 12;  // not those of the profile
  }
  if (scenario.one_camera) {
    traits.disparity.isDualCamera = 0;
    traits.disparity.zpd = 1000;
  }
  devhost::Frame frame = devhost::make_frame(traits);
  return as_set ? devhost::make_frame_set(std::move(frame)) : std::move(frame);
}

/// A filter that has seen a frame `before`, if that is one.
FilterDriver prepared(const Scenario& scenario, const devhost::Frame& before) {
  FilterDriver filter(scenario.filter, scenario.configuration);
  EXPECT_TRUE(!before || filter.process(before));
  return filter;
}

Pixels depth_pixels(const devhost::Frame& frame) {
  return devhost::inspect(devhost::depth_frame_of(frame.get()).get()).pixels;
}

/// A converted frame whose pixels have no depth; packed ones keep their confidence.
Pixels without_depth(const devhost::Frame& frame) {
  devhost::FrameTraits traits = devhost::inspect(devhost::depth_frame_of(frame.get()).get());
  for (std::uint16_t& pixel : traits.pixels) pixel &= traits.format == ZV_FORMAT_PACKED_CODE ? 15 : 0;
  return traits.pixels;
}

/// What may come out for the frame after one whose `call` failed.
std::vector<Pixels> expected_next(const Scenario& scenario, const devhost::Frame& before,
                                  const devhost::Frame& input, const std::string& call) {
  FilterDriver filter = prepared(scenario, before);
  std::vector<Pixels> expected = {depth_pixels(filter.process(input))};
  const std::string name = scenario.filter;
  // The history may know the frame that the host did not get.
  if (name == "TemporalFilter") expected.push_back(depth_pixels(filter.process(input)));
  // A table or a product that could not be worked out is not worked out again for the same parameters.
  if (name == "DisparityTransform" && call == "zv_stream_profile_get_format") {
    expected.push_back(without_depth(input));
  }
  if (name == "HardwareD2DCorrectionFilter" &&
      call == "zv_disparity_based_stream_profile_get_disparity_param") {
    expected.push_back(depth_pixels(input));
  }
  return expected;
}

/// Makes one call fail and checks what the caller gets, what is printed and that nothing is left behind.
void expect_survived(const Scenario& scenario, const devhost::Frame& before, const devhost::Frame& input,
                     const std::string& call, int occurrence, bool null_slot) {
  SCOPED_TRACE(testing::Message() << scenario.filter << ", " << scenario.name << ", " << call
                                  << " number " << occurrence << " after "
                                  << (before ? "a frame" : "none"));
  const std::vector<Pixels> expected = expected_next(scenario, before, input, call);
  const devhost::LiveObjects baseline = devhost::live_objects();
  {
    FilterDriver filter = prepared(scenario, before);
    devhost::fail_call(call, occurrence);
    const std::string printed = FilterDriver::output_of([&] {
      PrivFilterContext* context = filter.context();
      if (null_slot) {
        EXPECT_EQ(context->process(context->filter, input.get(), nullptr), nullptr);
      } else {
        EXPECT_FALSE(filter.process(input));
      }
    });
    ASSERT_TRUE(devhost::clear_fault());
    EXPECT_EQ(printed, error_text("injected fault", call, "", 7));
    EXPECT_EQ(filter.last_error(), null_slot ? kNoError : printed);
    EXPECT_EQ(devhost::live_objects().frames, baseline.frames);
    const devhost::Frame next = filter.process(input);
    ASSERT_TRUE(next) << "the next frame: " << filter.last_error();
    EXPECT_NE(std::ranges::count(expected, depth_pixels(next)), 0) << "the next frame";
  }
  EXPECT_EQ(devhost::live_objects(), baseline);
}

TEST(HostFaults, EveryFailingCallIsPrintedOnceAndLeavesNothingBehind) {
  const devhost::Frame none;
  int faults = 0;
  for (const Scenario& scenario : kScenarios) {
    for (const bool as_set : {false, true}) {
      const devhost::Frame input = make_input(scenario, as_set);
      const Pixels pixels = depth_pixels(input);
      // A frame of another size makes the filters work out again what they keep.
      const bool any_size = std::string(scenario.filter) != "DepthResize";
      const devhost::Frame other =
          any_size ? make_input(scenario, as_set, 48, 32) : make_input(scenario, as_set);
      for (const devhost::Frame* before : {&none, &input, &other}) {
        FilterDriver filter = prepared(scenario, *before);
        devhost::start_call_log();
        const devhost::Frame output = filter.process(input);
        const std::vector<std::string> calls = devhost::stop_call_log();
        ASSERT_TRUE(output) << scenario.filter << ", " << scenario.name;
        std::map<std::string, int> seen;
        for (const std::string& call : calls) {
          ++seen[call];
          for (const bool null_slot : {false, true}) {
            expect_survived(scenario, *before, input, call, seen[call], null_slot);
            ++faults;
          }
        }
      }
      EXPECT_EQ(depth_pixels(input), pixels) << "the input never changes";
    }
  }
  std::cout << faults << " faults injected\n";
  EXPECT_GT(faults, 1000);
}

TEST(HostFaults, AnErrorThatIsAlreadyThereCountsAsTheFirstCalls) {
  for (const Scenario& scenario : kScenarios) {
    FilterDriver filter(scenario.filter);
    const devhost::Frame input = make_input(scenario, false);
    zv_error* const old = zv_create_error(1, "old", "before", "x", 3);
    zv_error* error = old;
    PrivFilterContext* context = filter.context();
    const std::string printed = FilterDriver::output_of(
        [&] { EXPECT_EQ(context->process(context->filter, input.get(), &error), nullptr); });
    EXPECT_EQ(error, old);
    EXPECT_EQ(printed, error_text("old", "before", "x", 3));
  }
}

}  // namespace
}  // namespace filterprocessor
