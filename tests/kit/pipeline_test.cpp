// Chains at work, with the filters of the probe plug-in, which print what they are given.
#include "kit/pipeline/pipeline.h"

#include <gtest/gtest.h>

#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/sequence.h"
#include "refusal.h"

namespace kit {
namespace {

const Plugin& probe() {
  static const Plugin plugin(KIT_PROBE_PLUGIN);
  return plugin;
}

Frame sample() { return describe_frame({2, 3, {1, 2, 3, 4, 5, 6}}, {}); }

TEST(Pipeline, HandsOutEveryStage) {
  Pipeline pipeline(probe(), {{"EchoFilter", {}}, {"CroppingFilter", {}}, {"ConvertingFilter", {}}});
  std::vector<std::size_t> numbers, heights;
  const Frame result = pipeline.run(sample(), [&](const Stage& stage) {
    numbers.push_back(stage.number);
    heights.push_back(stage.frame.height);
    EXPECT_EQ(stage.before.height, stage.number < 3 ? 3u : 1u);
    EXPECT_GE(stage.milliseconds, 0);
  });
  EXPECT_EQ(numbers, (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(heights, (std::vector<std::size_t>{3, 3, 1, 1}));
  EXPECT_EQ(result.pixels, (std::vector<std::uint16_t>{1, 2}));
}

TEST(Pipeline, PassesOverStepsThatAreSwitchedOff) {
  Pipeline pipeline(probe(), {{"CroppingFilter", {}, false}, {"EchoFilter", {}}});
  ChainResults results(pipeline.chain());
  const auto add = [&](const Stage& stage) { results.add(stage, std::nullopt); };
  EXPECT_EQ(pipeline.run(sample(), add).height, 3u);
  EXPECT_EQ(results.filters[0].median_milliseconds(), std::nullopt);
  pipeline.enable(0, true);
  EXPECT_EQ(pipeline.run(sample(), add).height, 1u);
  EXPECT_EQ(results.filters[0].frames, 1u);
  EXPECT_EQ(results.filters[1].frames, 2u);
}

TEST(Pipeline, TakesOtherValuesBetweenFramesAndKeepsThemWhenOthersAreWrong) {
  std::vector<std::string> warnings;
  const auto on_warning = [&](const std::string& line) { warnings.push_back(line); };
  testing::internal::CaptureStdout();
  Pipeline pipeline(probe(), {{"EchoFilter", Values{{"count", "7"}}}}, on_warning);
  pipeline.configure(0, {{"ratio", "1"}, {"count", "12"}}, on_warning);
  EXPECT_EQ(refusal(Error::Kind::bad_request,
                    [&] {
                      pipeline.configure(0, {{"count", "x"}});
                    }),
            "EchoFilter: count=x is not a whole number of at most 32 bits");
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "configured: 7 0.5 1\nconfigured: 12 1 1\n");
  EXPECT_EQ(pipeline.chain()[0].values->at("count"), "12");
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_TRUE(warnings[0].starts_with("EchoFilter: count=12 is outside"));
}

TEST(Pipeline, ForgetsFramesWhenItIsReset) {
  testing::internal::CaptureStdout();
  Pipeline pipeline(probe(), {{"EchoFilter", {}}});
  pipeline.run(sample());
  pipeline.run(sample(), {}, Handover::frame_set);
  pipeline.reset();
  pipeline.run(sample());
  std::fflush(stdout);
  std::string frames;
  std::istringstream lines(testing::internal::GetCapturedStdout());
  for (std::string line; std::getline(lines, line);) frames += line.substr(0, line.find(',')) + '\n';
  EXPECT_EQ(frames, "frame 1: set 0\nframe 2: set 1\nframe 1: set 0\n");
}

TEST(Sequence, NamesTheFrameThatFails) {
  Pipeline pipeline(probe(), {{"FailingFilter", {}}});
  const FrameSource source =
      camera_source(make_camera_request(parse_camera_input("camera:size=64x48")), {});
  const std::string line =
      refusal(Error::Kind::failed_run, [&] { run_sequence(source, pipeline, Handover::frame, {}); });
  EXPECT_TRUE(line.starts_with("camera: frame 0: FailingFilter failed: \"out of order\"")) << line;
}

}  // namespace
}  // namespace kit
