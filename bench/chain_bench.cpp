// Seven filters in a row, driven as a host drives them, host copies included.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filter_handle.h"
#include "rows.h"
#include "virtual_camera.h"

namespace filterprocessor::bench {

namespace {

using Times = std::vector<double>;  // milliseconds

template <typename Work>
auto timed(Times& times, const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  auto result = work();
  times.push_back(
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  return result;
}

struct Step {
  std::string name;
  devhost::FilterHandle filter;
  Times times = {};

  explicit Step(const std::string& filter_name, std::vector<const char*> values = {})
      : name(filter_name), filter(devhost::make_filter(name)) {
    if (!filter) fail("does not exist");
    if (values.empty()) return;
    zv_error* error = nullptr;
    filter->update_config(filter->filter, values.size(), values.data(), &error);
    if (error != nullptr) fail("refuses its configuration");
  }

  [[noreturn]] void fail(const char* what) const {
    std::fprintf(stderr, "%s %s\n", name.c_str(), what);
    std::exit(1);
  }
};

void measure(Size size) {
  const auto width = static_cast<std::uint32_t>(size.width);
  const auto height = static_cast<std::uint32_t>(size.height);
  const devhost::VirtualCamera camera({.width = width, .height = height});
  std::vector<devhost::Frame> frames;
  for (unsigned i = 0; i < 6; ++i) frames.push_back(devhost::make_frame(camera.frame(i).disparity));

  const std::string w = std::to_string(width);
  const std::string h = std::to_string(height);
  Step chain[] = {
      Step("DisparityTransform"),
      Step("NoiseRemovalFilter", {"80", "64", "848", "480"}),
      Step("EdgeNoiseRemovalFilter"),
      Step("SpatialAdvancedFilter"),
      Step("TemporalFilter"),
      Step("HoleFillingFilter", {"1"}),
      Step("DepthResize", {w.c_str(), h.c_str(), "1", "0", "0", "0", "0"}),
  };

  Times copies;
  Times totals;
  std::vector<std::uint16_t> from(std::size_t{width} * height, 1);
  std::vector<std::uint16_t> to(from.size());
  for (std::size_t round = 0; round < 200; ++round) {
    timed(copies, [&] { return std::memcpy(to.data(), from.data(), from.size() * sizeof from[0]); });
    from[round % from.size()] = to[0];
    const zv_frame_t* input = frames[round % frames.size()].get();
    devhost::Frame last;
    double total = 0;
    for (Step& each : chain) {
      devhost::Frame output(
          timed(each.times, [&] { return each.filter->process(each.filter->filter, input, nullptr); }));
      if (!output) each.fail("failed");
      total += each.times.back();
      last = std::move(output);
      input = last.get();
    }
    totals.push_back(total);
  }

  const double copy = median(copies);
  const double whole = median(totals);
  std::printf("\n| chain, %dx%d | ms a frame | times memcpy | share |\n|---|---:|---:|---:|\n",
              size.width, size.height);
  for (Step& each : chain) {
    const double time = median(each.times);
    std::printf("| `%s` | %.3f | %.1f | %.0f %% |\n", each.name.c_str(), time, time / copy,
                100 * time / whole);
  }
  std::printf("| together | %.3f | %.1f | |\n", whole, whole / copy);
}

}  // namespace

void print_chain_tables() {
  for (const Size size : {kSizes[0], kSizes[2]}) measure(size);
}

}  // namespace filterprocessor::bench
