// Chains at work; a filter of the probe plug-in prints what it is given.
#include "kit/chain/pipeline.h"

#include <algorithm>
#include <atomic>

#include <gtest/gtest.h>

#include "filter_run.h"
#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/workers.h"
#include "refusal.h"

namespace kit {
namespace {

const FilterLibrary& probe() {
  static const FilterLibrary library = load_plugin(KIT_PROBE_PLUGIN);
  return library;
}

Frame sample() { return describe_frame({2, 3, {1, 2, 3, 4, 5, 6}}, {}); }

Pipeline pipeline_of(const FilterLibrary& library, const Chain& chain) {
  Pipeline pipeline(library, chain);
  pipeline.set_input(describe_input({2, 3}, {}));
  return pipeline;
}

/// The result's size.
std::pair<std::uint32_t, std::uint32_t> run(Pipeline& pipeline, Handover handover = Handover::frame) {
  const Frame frame = sample();
  const framehost::Frame result = pipeline.run({frame.pixels.data(), 4}, nullptr, handover);
  const hosts::FrameTraits& traits = framehost::traits_of(result.get());
  return {traits.width, traits.height};
}

/// Frames 0 to count - 1, each with its number in every pixel; those in `bad` do not load.
FrameSource numbered(std::size_t count, const std::vector<std::size_t>& bad = {}) {
  FrameSource source;
  for (std::size_t i = 0; i < count; ++i) source.names.push_back({concat("frame ", i), "", ".png", {}});
  source.load = [bad](std::size_t index) {
    if (std::count(bad.begin(), bad.end(), index) > 0) fail("frame ", index, ": is bad");
    return SourceFrame{describe_frame({1, 1, {static_cast<std::uint16_t>(index)}}, {}), {}};
  };
  return source;
}

/// Sends them through one filter.
void run_filled(const FrameSource& source, std::size_t threads, std::size_t in_flight,
                const SequenceVisitor& visitor) {
  Pipeline pipeline(own_filters(), {{"HoleFillingFilter"}});
  Workers(threads).for_each(1, [&](std::size_t) {
    run_sequence(source, pipeline, {Handover::frame, in_flight, {}}, visitor);
  });
}

TEST(Sequence, KeepsOrderAndBoundsWhatIsUnderWay) {
  constexpr std::size_t count = 500, most = 6;
  FrameSource source = numbered(count);
  std::atomic<std::size_t> under_way = 0, peak = 0;
  source.load = [&, load = source.load](std::size_t index) {
    const std::size_t now = ++under_way;
    for (std::size_t seen = peak; now > seen && !peak.compare_exchange_weak(seen, now);) {
    }
    return load(index);
  };
  std::size_t filtered = 0, done = 0;
  std::vector<std::atomic<int>> delivered(count);
  SequenceVisitor visitor;
  visitor.on_passage = [&](const SourceFrame&, const Passage& passage) {
    if (passage.number == 1) {
      EXPECT_EQ(passage.frame.pixels[0], filtered++);
    }
  };
  visitor.on_result = [&](std::size_t index, const SourceFrame&, const FrameView& result) {
    delivered[index] += result.pixels[0] == index;
  };
  visitor.on_done = [&](std::size_t index) {
    EXPECT_EQ(index, done++);
    --under_way;
  };
  run_filled(source, 4, most, visitor);
  EXPECT_LE(peak, most);
  EXPECT_EQ(filtered, count);
  EXPECT_EQ(done, count);
  EXPECT_EQ(std::count(delivered.begin(), delivered.end(), 1), static_cast<std::ptrdiff_t>(count));
}

TEST(Sequence, FailsWithItsFirstFrameInOrderOrTellsOfAll) {
  const char* const all =
      "frame 20: cannot be written; frame 22: is bad; frame 23: is bad; frame 30: is bad";
  for (const std::size_t threads : {1u, 4u}) {
    for (const bool keep_going : {false, true}) {
      std::size_t done = 0;
      std::vector<std::string> problems;
      SequenceVisitor visitor;
      visitor.on_result = [](std::size_t index, const SourceFrame&, const FrameView&) {
        if (index == 20) fail("frame 20: cannot be written");
      };
      visitor.on_done = [&](std::size_t) { ++done; };
      if (keep_going)
        visitor.on_problem = [&](const Error& problem) { problems.emplace_back(problem.what()); };
      const std::string failure = refusal(Error::Kind::failed_run, [&] {
        run_filled(numbered(40, {22, 23, 30}), threads, threads == 1 ? 1 : 8, visitor);
      });
      EXPECT_EQ(failure, keep_going ? "" : "frame 20: cannot be written");
      EXPECT_EQ(done, keep_going ? 36u : 20u);
      EXPECT_EQ(join(problems, "; "), keep_going ? all : "");
    }
  }
}

TEST(FilterStatistics, GiveTheMedianOfAllDurations) {
  FilterStatistics statistics;
  for (const double duration : {9.0, 1.0, 3.0}) statistics.add(sample(), sample(), duration);
  EXPECT_EQ(statistics.median_milliseconds(), 3);
  statistics.add(sample(), sample(), 4);
  EXPECT_EQ(statistics.median_milliseconds(), 3.5);
}

TEST(Pipeline, PassesOverStepsThatAreSwitchedOff) {
  Pipeline pipeline =
      pipeline_of(own_filters(), {{"DepthResize", Values{{"scale", "2"}}, false}, {"HoleFillingFilter"}});
  EXPECT_EQ(run(pipeline), (std::pair{2u, 3u}));
  EXPECT_EQ(pipeline.stage(0).milliseconds, 0);
  pipeline.enable(0, true);
  EXPECT_EQ(run(pipeline), (std::pair{4u, 6u}));
  EXPECT_EQ(pipeline.output().traits.height, 6u);
}

TEST(Pipeline, TakesOtherValuesBetweenFramesAndKeepsThemWhenOthersAreWrong) {
  testing::internal::CaptureStdout();
  Pipeline pipeline(probe(), {{"EchoFilter", Values{{"count", "7"}}}});
  pipeline.configure(0, {{"ratio", "1"}, {"count", "9"}});
  EXPECT_EQ(refusal(Error::Kind::bad_request,
                    [&] {
                      pipeline.configure(0, {{"count", "12"}});
                    }),
            "step 1 (EchoFilter): count=12 is out of range; expected 0 to 10");
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "configured: 7 0.5 1\nconfigured: 9 1 1\n");
  EXPECT_EQ(pipeline.chain()[0].values->at("count"), "9");
}

TEST(Pipeline, MakesItsFiltersAnewWhenItIsReset) {
  testing::internal::CaptureStdout();
  Pipeline pipeline = pipeline_of(probe(), {{"EchoFilter", Values{}}});
  run(pipeline);
  run(pipeline, Handover::frame_set);
  pipeline.reset();
  run(pipeline);
  std::fflush(stdout);
  std::string lines;
  std::istringstream printed(testing::internal::GetCapturedStdout());
  for (std::string line; std::getline(printed, line);) lines += line.substr(0, line.find(',')) + '\n';
  // An empty frame is tried before the first one, on a filter of its own.
  const std::string trial = "configured: 3 0.5 1\nframe 1: set 0\n";
  EXPECT_EQ(lines, "configured: 3 0.5 1\n" + trial +
                       "frame 1: set 0\nframe 2: set 1\nconfigured: 3 0.5 1\n" + trial +
                       "frame 1: set 0\n");
}

}  // namespace
}  // namespace kit
