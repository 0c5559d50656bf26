#include "rows.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

namespace filterprocessor::bench {

Row::Row(std::string name, Image image)
    : name_(std::move(name) + ", " + std::to_string(image.width) + "x" + std::to_string(image.height)),
      image_(std::make_shared<const Image>(std::move(image))) {
  auto target = std::make_shared<std::vector<std::uint16_t>>(image_->size());
  add_reading("memcpy", [target](const std::uint16_t* pixels) {
    std::memcpy(target->data(), pixels, target->size() * sizeof *pixels);
    benchmark::DoNotOptimize(target->data());
    benchmark::ClobberMemory();
  });
}

Row& Row::add(const std::string& form, std::function<void(std::uint16_t*)> work) {
  add(form, true, std::move(work));
  return *this;
}

Row& Row::add_reading(const std::string& form, std::function<void(const std::uint16_t*)> work) {
  add(form, false, std::move(work));
  return *this;
}

void Row::add(const std::string& form, bool fresh, std::function<void(std::uint16_t*)> work) {
  const auto run = [image = image_, fresh, work = std::move(work)](benchmark::State& state) {
    // Each form has a frame of its own, in cache as a filter finds it: the host has just written the
    // copy.
    std::vector<std::uint16_t> pixels(image->pixels);
    for (auto _ : state) {
      if (fresh) std::memcpy(pixels.data(), image->pixels.data(), pixels.size() * sizeof pixels[0]);
      const auto start = std::chrono::steady_clock::now();
      work(pixels.data());
      benchmark::ClobberMemory();
      state.SetIterationTime(
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    state.counters["pixels"] = static_cast<double>(image->size());
  };
  benchmark::RegisterBenchmark((name_ + "/" + form).c_str(), run)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

namespace {

template <typename Add>
void for_each_level(const Add& add) {
  for (const KernelSet& set : kernel_sets()) {
    if (!set.machine_runs()) continue;
    add(&set == &kernel_sets().front() ? std::string(kPlain) : set.level, set);
  }
}

}  // namespace

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

Row& Row::add_levels(std::function<void(const KernelSet&, std::uint16_t*)> work) {
  for_each_level([&](const std::string& form, const KernelSet& kernels) {
    add(form, [work, &kernels](std::uint16_t* pixels) { work(kernels, pixels); });
  });
  return *this;
}

Row& Row::add_levels_reading(
    std::function<std::function<void(const std::uint16_t*)>(const KernelSet&)> prepare) {
  for_each_level(
      [&](const std::string& form, const KernelSet& kernels) { add_reading(form, prepare(kernels)); });
  return *this;
}

}  // namespace filterprocessor::bench
