// Filters driven as a host drives them, host copies included: seven in a row, and sampled conversion beside the two
// filters that do the same one after the other.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
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

std::vector<devhost::Frame> camera_frames(Size size, std::uint8_t pack_mode) {
  const devhost::VirtualCamera camera({.width = static_cast<std::uint32_t>(size.width),
                                       .height = static_cast<std::uint32_t>(size.height),
                                       .pack_mode = pack_mode});
  std::vector<devhost::Frame> frames;
  for (unsigned i = 0; i < 6; ++i) frames.push_back(devhost::make_frame(camera.frame(i).disparity));
  return frames;
}

/// Sends a frame through a chain and notes each step's time. @return the sum
double run(std::span<Step> chain, const zv_frame_t* input) {
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
  return total;
}

constexpr std::size_t kRounds = 200;

void measure(Size size) {
  const std::vector<devhost::Frame> frames = camera_frames(size, 2);
  const std::string w = std::to_string(size.width);
  const std::string h = std::to_string(size.height);
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
  std::vector<std::uint16_t> from(
      static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height), 1);
  std::vector<std::uint16_t> to(from.size());
  for (std::size_t round = 0; round < kRounds; ++round) {
    timed(copies, [&] { return std::memcpy(to.data(), from.data(), from.size() * sizeof from[0]); });
    from[round % from.size()] = to[0];
    totals.push_back(run(chain, frames[round % frames.size()].get()));
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

/// OpenNIDisparityTransform that samples beside conversion and, at another scale, resizing.
void measure_sampling(Size size, double scale) {
  const std::vector<devhost::Frame> frames = camera_frames(size, 1);
  const auto scaled = [scale](int side) { return std::to_string(static_cast<int>(scale * side)); };
  const std::string w = scaled(size.width), h = scaled(size.height), ratio = std::to_string(scale);
  Step sampled[] = {Step("OpenNIDisparityTransform",
                         {"10000", "100", "1", w.c_str(), h.c_str(), ratio.c_str(), "0", "0", "0", "0"})};
  std::vector<Step> apart;
  apart.emplace_back("DisparityTransform");
  if (scale != 1) {
    apart.emplace_back("DepthResize",
                       std::vector<const char*>{w.c_str(), h.c_str(), ratio.c_str(), "0", "0", "0", "0"});
  }
  Times together, others;
  for (std::size_t round = 0; round < kRounds; ++round) {
    const zv_frame_t* frame = frames[round % frames.size()].get();
    for (std::size_t turn : {round, round + 1}) {
      if (turn % 2 == 0) {
        together.push_back(run(sampled, frame));
      } else {
        others.push_back(run(apart, frame));
      }
    }
  }
  const double time = median(together), other = median(others);
  std::printf("| %dx%d to %sx%s | %.3f | %.3f | %.2f |\n", size.width, size.height, w.c_str(), h.c_str(),
              time, other, time / other);
}

}  // namespace

void print_chain_tables() {
  for (const Size size : {kSizes[0], kSizes[2]}) measure(size);
  std::printf(
      "\n| sampled conversion | ms a frame | `DisparityTransform`, `DepthResize` | ratio "
      "|\n|---|---:|---:|---:|\n");
  for (const Size size : {kSizes[0], kSizes[2]}) {
    for (const double scale : {1.0, 0.5}) measure_sampling(size, scale);
  }
}

}  // namespace filterprocessor::bench
