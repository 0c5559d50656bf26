// Sends many small frames of changing sizes through each filter, and checks that the memory in use stays
// flat and that no frame or profile is left.
#include <cstdio>
#include <cstdlib>
#include <malloc.h>

#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr std::uint32_t kSizes[][2] = {{16, 16}, {64, 48}, {33, 21}, {96, 8},
                                       {8, 96},  {80, 60}, {12, 9},  {48, 48}};
constexpr unsigned kFramesPerSize = 5;  // so that histories and kept tables are used, too
constexpr unsigned kCycle = 4 * kFramesPerSize * std::size(kSizes);

/// Frame n, now and then in a set, through a filter that is reset now and then.
void process(FilterDriver& filter, std::size_t index, unsigned n) {
  const auto& [width, height] = kSizes[n / kFramesPerSize % std::size(kSizes)];
  const FilterUse use = every_filter(width, height)[index];
  if (n % kCycle == 7) filter.reset();
  if (n % kFramesPerSize == 0 || n % kCycle == 7) {  // DepthResize takes one size alone
    EXPECT_EQ(filter.update(use.configuration), kNoError);
  }
  devhost::Frame frame = devhost::make_frame(lively_frame(width, height, use.pixel_type, n));
  if (n % 3 == 0) frame = devhost::make_frame_set(std::move(frame));
  EXPECT_TRUE(filter.process(frame)) << use.name << filter.last_error();
}

/// Watches the memory once a cycle has warmed everything up.
void soak(std::size_t index, const std::string& name, unsigned frames) {
  const auto bytes_in_use = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  FilterDriver filter(name);
  for (unsigned n = 0; n < kCycle; ++n) process(filter, index, n);
  const std::size_t warm = bytes_in_use();
  const unsigned whole = (frames + kCycle - 1) / kCycle * kCycle;
  for (unsigned n = 0; n < whole; ++n) process(filter, index, n);
  const std::size_t end = bytes_in_use();
  std::printf("%-28s %zu bytes in use at first, %zu after %u frames\n", name.c_str(), warm, end, whole);
  EXPECT_LE(end, warm + 4096) << name << ": memory grows";
}

}  // namespace
}  // namespace filterprocessor

int main(int argc, char** argv) {
  const long frames = argc == 2 ? std::strtol(argv[1], nullptr, 10) : 0;
  if (frames < 1) {
    std::fprintf(stderr, "use: %s FRAMES\n", argv[0]);
    return 2;
  }
  GTEST_FLAG_SET(throw_on_failure, true);  // the first ends it
  const auto uses = filterprocessor::every_filter(1, 1);
  for (std::size_t i = 0; i < uses.size(); ++i)
    filterprocessor::soak(i, uses[i].name, static_cast<unsigned>(frames));
  EXPECT_EQ(devhost::live_objects(), devhost::LiveObjects{}) << "frames or profiles are left";
  return 0;
}
