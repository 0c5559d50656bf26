// Sequences at work on several threads.
#include <algorithm>
#include <atomic>

#include <gtest/gtest.h>

#include "filter_run.h"
#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/workers.h"

namespace kit {
namespace {

TEST(Sequence, KeepsOrderAndBoundsWhatIsUnderWay) {
  constexpr std::size_t count = 500;
  std::atomic<std::size_t> under_way = 0, peak = 0;
  FrameSource source;
  source.names.resize(count);
  source.load = [&](std::size_t index) {
    const std::size_t now = ++under_way;
    for (std::size_t seen = peak; now > seen && !peak.compare_exchange_weak(seen, now);) {
    }
    return SourceFrame{describe_frame({1, 1, {static_cast<std::uint16_t>(index)}}, {}), {}};
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
  Pipeline pipeline(own_filters(), {{"HoleFillingFilter"}});
  Workers(4).for_each(1, [&](std::size_t) {
    run_sequence(source, pipeline, {Handover::frame, 6, {}}, visitor);
  });
  EXPECT_LE(peak, 6u);
  EXPECT_EQ(filtered, count);
  EXPECT_EQ(done, count);
  EXPECT_EQ(std::count(delivered.begin(), delivered.end(), 1), static_cast<std::ptrdiff_t>(count));
}

TEST(FilterStatistics, GiveTheMedianOfAllDurations) {
  const Frame frame = describe_frame({1, 1, {1}}, {});
  FilterStatistics statistics;
  for (const double duration : {9.0, 1.0, 3.0}) statistics.add(frame, frame, duration);
  EXPECT_EQ(statistics.median_milliseconds(), 3);
  statistics.add(frame, frame, 4);
  EXPECT_EQ(statistics.median_milliseconds(), 3.5);
}

}  // namespace
}  // namespace kit
