// Seven filters in a row, driven as a host drives them, host copies included.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filterprocessor/filter_processor.h"
#include "rows.h"
#include "virtual_camera.h"

namespace filterprocessor::bench {

namespace {

using Times = std::vector<double>;  // milliseconds

double median(Times& times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

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
  PrivFilterContext* context;
  Times times = {};
};

Step step(const std::string& name, std::vector<const char*> values) {
  for (std::int32_t i = 0; i < zv_get_filter_count(); ++i) {
    if (zv_get_filter_name(i) != name) continue;
    PrivFilterContext* context = zv_create_filter(i);
    if (!values.empty()) context->update_config(context->filter, values.size(), values.data(), nullptr);
    return {name, context};
  }
  std::fprintf(stderr, "there is no filter %s\n", name.c_str());
  std::exit(1);
}

void measure(Size size) {
  const auto width = static_cast<std::uint32_t>(size.width);
  const auto height = static_cast<std::uint32_t>(size.height);
  const devhost::VirtualCamera camera({.width = width, .height = height});
  std::vector<devhost::Frame> frames;
  for (unsigned i = 0; i < 6; ++i) frames.push_back(devhost::make_frame(camera.frame(i).disparity));

  const std::string w = std::to_string(width);
  const std::string h = std::to_string(height);
  std::vector<Step> chain = {
      step("DisparityTransform", {}),
      step("NoiseRemovalFilter", {"80", "64", "848", "480"}),
      step("EdgeNoiseRemovalFilter", {}),
      step("SpatialAdvancedFilter", {}),
      step("TemporalFilter", {}),
      step("HoleFillingFilter", {"1"}),
      step("DepthResize", {w.c_str(), h.c_str(), "1", "0", "0", "0", "0"}),
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
          timed(each.times, [&] { return each.context->process(each.context->filter, input, nullptr); }));
      if (!output) {
        std::fprintf(stderr, "%s failed\n", each.name.c_str());
        std::exit(1);
      }
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
    each.context->destroy(each.context);
  }
  std::printf("| together | %.3f | %.1f | |\n", whole, whole / copy);
}

}  // namespace

void print_chain_tables() {
  for (const Size size : {kSizes[0], kSizes[2]}) measure(size);
}

}  // namespace filterprocessor::bench
