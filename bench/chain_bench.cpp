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
#include "zvfilter/zvfilter.h"

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

/// Seven filters in a row.
std::vector<Step> whole_chain(Size size) {
  const std::string w = std::to_string(size.width), h = std::to_string(size.height);
  std::vector<Step> chain;
  chain.emplace_back("DisparityTransform");
  chain.emplace_back("NoiseRemovalFilter", std::vector<const char*>{"80", "64", "848", "480"});
  chain.emplace_back("EdgeNoiseRemovalFilter");
  chain.emplace_back("SpatialAdvancedFilter");
  chain.emplace_back("TemporalFilter");
  chain.emplace_back("HoleFillingFilter", std::vector<const char*>{"1"});
  chain.emplace_back("DepthResize",
                     std::vector<const char*>{w.c_str(), h.c_str(), "1", "0", "0", "0", "0"});
  return chain;
}
constexpr const char* kWholeChain =
    "DisparityTransform;NoiseRemovalFilter:min_diff=64;EdgeNoiseRemovalFilter;SpatialAdvancedFilter;"
    "TemporalFilter;"
    "HoleFillingFilter:hole_filling_mode=1;DepthResize:scale=1";

void measure(Size size) {
  const std::vector<devhost::Frame> frames = camera_frames(size, 2);
  std::vector<Step> chain = whole_chain(size);

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

/// The same chain through libzvfilter, from the caller's pixels into the caller's buffer, beside the time that the filters
/// alone take in it and in the development host.
void measure_library(Size size) {
  const devhost::VirtualCamera camera({.width = static_cast<std::uint32_t>(size.width),
                                       .height = static_cast<std::uint32_t>(size.height)});
  std::vector<devhost::FrameTraits> images;
  std::vector<devhost::Frame> frames;
  for (unsigned i = 0; i < 6; ++i) {
    images.push_back(camera.frame(i).disparity);
    frames.push_back(devhost::make_frame(images.back()));
  }
  zvf_chain* const chain = zvf_chain_parse(kWholeChain, nullptr);
  zvf_input input = zvf_input_of(images[0].width, images[0].height);
  input.pixel_type = ZVF_DISPARITY;
  input.bits = images[0].bits;
  zvf_input_set_stereo(&input, images[0].disparity.baseline, images[0].disparity.fx);
  input.geometry.pack_mode = images[0].disparity.packMode;
  input.geometry.integer_bits = images[0].disparity.dispIntPlace;
  input.geometry.bits = images[0].disparity.bitSize;
  std::vector<Step> others = whole_chain(size);
  std::vector<std::uint16_t> output(images[0].pixels.size());
  Times runs, filters, host;
  zvf_error error = {};
  if (zvf_chain_set_input(chain, &input, &error) != ZVF_OK) std::exit(1);
  for (std::size_t round = 0; round < kRounds; ++round) {
    const auto& pixels = images[round % images.size()].pixels;
    if (timed(runs, [&] { return zvf_chain_run(chain, pixels.data(), 0, output.data(), 0, &error); }) !=
        ZVF_OK) {
      std::fprintf(stderr, "%s\n", error.message);
      std::exit(1);
    }
    filters.push_back(0);
    for (std::size_t i = 0; i < zvf_chain_size(chain); ++i) {
      zvf_view view = {};
      zvf_chain_stage(chain, i, &view, nullptr);
      filters.back() += view.milliseconds;
    }
    host.push_back(run(others, frames[round % frames.size()].get()));
  }
  zvf_chain_destroy(chain);
  const double whole = median(runs), alone = median(filters);
  std::printf("| %dx%d | %.3f | %.3f | %.3f | %.3f |\n", size.width, size.height, whole, alone,
              whole / alone, median(host));
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
  std::printf(
      "\n| chain of seven in libzvfilter | run, ms a frame | filters alone | ratio | in the development "
      "host "
      "|\n|---|---:|---:|---:|---:|\n");
  for (const Size size : {kSizes[0], kSizes[2]}) measure_library(size);
}

}  // namespace filterprocessor::bench
