// Sends many small frames of changing sizes through each filter and through a chain of them, and checks
// that the memory in use stays flat and that no frame or profile is left.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <vector>

#include "filter_handle.h"
#include "support/every_filter.h"

namespace filterprocessor {
namespace {

using devhost::FilterHandle;

struct Size {
  std::uint32_t width;
  std::uint32_t height;
};
constexpr Size kSizes[] = {{16, 16}, {64, 48}, {33, 21}, {96, 8}, {8, 96}, {80, 60}, {12, 9}, {48, 48}};
constexpr unsigned kSizeCount = std::size(kSizes);
constexpr unsigned kFramesPerSize = 5;  // so that histories and kept tables are used, too
constexpr unsigned kCycle = 4 * kSizeCount * kFramesPerSize;

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(1);
}

FilterHandle make(const std::string& name) {
  FilterHandle filter = devhost::make_filter(name);
  if (!filter) fail("there is no filter " + name);
  return filter;
}

void configure(const FilterHandle& filter, const std::vector<std::string>& values) {
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  zv_error* error = nullptr;
  filter->update_config(filter->filter, texts.size(), texts.data(), &error);
  if (error != nullptr) fail(std::string("a configuration failed: ") + zv_error_get_message(error));
}

std::size_t bytes_in_use() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Calls process(n) for `frames` numbers and watches the memory once a cycle has warmed everything up.
template <typename Process>
void watch(const std::string& what, unsigned frames, const Process& process) {
  const unsigned whole = (frames + kCycle - 1) / kCycle * kCycle + kCycle;
  std::size_t warm = 0;
  for (unsigned n = 0; n < whole; ++n) {
    if (n == kCycle) warm = bytes_in_use();
    process(n);
  }
  const std::size_t end = bytes_in_use();
  std::printf("%-28s %7u frames, %zu bytes in use after the first %u, %zu at the end\n", what.c_str(),
              whole, warm, kCycle, end);
  if (end > warm + 4096) fail(what + ": memory grows");
}

void check(const devhost::Frame& frame, const zv_error* error, const char* name) {
  if (error != nullptr) fail(std::string(name) + " failed: " + zv_error_get_message(error));
  if (!frame) fail(std::string(name) + " gave neither a frame nor an error");
}

/// Frame n, now and then in a set, through filters that are reset or configured anew now and then.
void soak(const std::string& what, const std::vector<std::string>& names, unsigned frames) {
  std::vector<FilterHandle> filters;
  for (const std::string& name : names) filters.push_back(make(name));
  watch(what, frames, [&](unsigned n) {
    const Size size = kSizes[n / kFramesPerSize % kSizeCount];
    const std::vector<FilterUse> uses = every_filter(size.width, size.height);
    const bool new_size = n % kFramesPerSize == 0;
    devhost::Frame frame;
    for (std::size_t i = 0; i < filters.size(); ++i) {
      const FilterHandle& filter = filters[i];
      const FilterUse& use =
          *std::find_if(uses.begin(), uses.end(), [&](const FilterUse& u) { return u.name == names[i]; });
      if (!frame) {
        frame = devhost::make_frame(lively_frame(size.width, size.height, use.pixel_type, n));
        if (n % 3 == 0) frame = devhost::make_frame_set(std::move(frame));
      }
      if (n % (2 * kFramesPerSize * kSizeCount) == 7) filter->reset(filter->filter, nullptr);
      // Only DepthResize can take one size alone.
      if (new_size || n % 20 == 7) configure(filter, use.configuration);
      zv_error* error = nullptr;
      devhost::Frame output(filter->process(filter->filter, frame.get(), &error));
      check(output, error, use.name);
      frame = std::move(output);
    }
  });
}

}  // namespace
}  // namespace filterprocessor

int main(int argc, char** argv) {
  const long frames = argc == 2 ? std::strtol(argv[1], nullptr, 10) : 0;
  if (frames < 1) {
    std::fprintf(stderr, "use: %s FRAMES\n", argv[0]);
    return 2;
  }
  using filterprocessor::soak;
  const auto count = static_cast<unsigned>(frames);
  for (const auto& use : filterprocessor::every_filter(1, 1)) soak(use.name, {use.name}, count);
  soak("chain",
       {"DisparityTransform", "NoiseRemovalFilter", "EdgeNoiseRemovalFilter", "SpatialAdvancedFilter",
        "TemporalFilter", "HoleFillingFilter", "DepthResize"},
       count);
  const devhost::LiveObjects left = devhost::live_objects();
  if (left != devhost::LiveObjects{}) {
    std::fprintf(stderr, "%ld frames and %ld profiles are left\n", left.frames, left.profiles);
    return 1;
  }
  std::printf("no frame and no profile is left\n");
  return 0;
}
