// Everything that may run at the same time, run at the same time. The thread sanitizer is the judge of
// most of it.
#include <atomic>
#include <functional>
#include <thread>

#include "filterprocessor/hole_filling.h"
#include "filterprocessor/margin.h"
#include "filterprocessor/spatial.h"
#include "filterprocessor/speckle.h"
#include "filterprocessor/temporal.h"
#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr std::uint32_t kWidth = 64;
constexpr std::uint32_t kHeight = 48;
constexpr unsigned kFrames = 60;

/// Runs all work at once, each in a thread of its own that waits for the others to be there.
void at_once(const std::vector<std::function<void()>>& work) {
  std::atomic<std::size_t> waiting = work.size();
  std::vector<std::thread> threads;
  for (const auto& each : work) {
    threads.emplace_back([&] {
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      each();
    });
  }
  for (std::thread& thread : threads) thread.join();
}

/// The outputs of one instance for a sequence of frames.
std::vector<Pixels> outputs(const FilterUse& use) {
  FilterDriver filter(use.name);
  EXPECT_EQ(filter.update(use.configuration), kNoError);
  std::vector<Pixels> all;
  for (unsigned n = 0; n < kFrames; ++n) {
    const devhost::Frame result =
        filter.process(devhost::make_frame(lively_frame(kWidth, kHeight, use.pixel_type, n)));
    EXPECT_TRUE(result) << use.name << ": " << filter.last_error();
    if (result) all.push_back(devhost::inspect(result.get()).pixels);
  }
  return all;
}

// Stands first: only the first call of a process makes the registry.
TEST(Threads, TheRegistryIsMadeOnce) {
  std::vector<std::function<void()>> work;
  std::atomic<int> found = 0;
  for (int i = 0; i < 8; ++i) {
    work.push_back([&found, i] {
      PrivFilterContext* context = zv_create_filter(i);
      found += context != nullptr && std::string(zv_get_filter_name(i)) != "UnknownFilter";
      zv_priv_filter_context_destroy(context);
    });
  }
  at_once(work);
  EXPECT_EQ(found, 8);
}

TEST(Threads, InstancesDoNotKnowOfEachOther) {
  const std::vector<FilterUse> uses = every_filter(kWidth, kHeight);
  std::vector<std::vector<Pixels>> alone;
  for (const FilterUse& use : uses) alone.push_back(outputs(use));
  std::vector<std::vector<Pixels>> together(2 * uses.size());
  std::vector<std::function<void()>> work;
  for (std::size_t i = 0; i < together.size(); ++i) {
    work.push_back([&, i] { together[i] = outputs(uses[i % uses.size()]); });
  }
  at_once(work);
  for (std::size_t i = 0; i < together.size(); ++i) {
    EXPECT_EQ(together[i], alone[i % uses.size()]) << uses[i % uses.size()].name;
  }
}

/// Each frame shows one configuration or the other in full.
TEST(Threads, FiltersWithALockAreConfiguredWhileTheyWork) {
  for (const FilterUse& use : every_filter(kWidth, kHeight)) {
    const std::string name = use.name;
    if (name == "HoleFillingFilter" || name == "TemporalFilter" || name == "DepthResize" ||
        name == "HardwareD2DCorrectionFilter") {
      continue;  // these have no lock
    }
    const devhost::Frame frame = devhost::make_frame(lively_frame(kWidth, kHeight, use.pixel_type, 0));
    std::vector<Pixels> expected;
    for (const auto& configuration : {use.configuration, use.other}) {
      FilterDriver filter(use.name);
      filter.update(configuration);
      expected.push_back(devhost::inspect(filter.process(frame).get()).pixels);
    }
    FilterDriver filter(use.name);
    filter.update(use.configuration);
    int torn = 0;
    at_once({[&] {
               for (int n = 0; n < 200; ++n) filter.update(n % 2 == 0 ? use.other : use.configuration);
             },
             [&] {
               PrivFilterContext* context = filter.context();
               for (int n = 0; n < 200; ++n) {
                 zv_error* error = nullptr;
                 const devhost::Frame result(context->process(context->filter, frame.get(), &error));
                 const Pixels pixels = result ? devhost::inspect(result.get()).pixels : Pixels{};
                 if (pixels != expected[0] && pixels != expected[1]) ++torn;
               }
             }});
    EXPECT_EQ(torn, 0) << name << ": frames of both configurations or none";
  }
}

TEST(Threads, KernelsKeepNothingBetweenImages) {
  const auto filtered = [](unsigned seed) {
    Pixels image = lively_frame(kWidth, kHeight, 0, seed).pixels;
    Pixels history(image.size(), 1800);
    std::vector<std::uint8_t> buffer(9 * image.size() + 1);
    std::uint16_t table[] = {20, 40, 80, 160, 320, 640, 1280};
    const int w = kWidth;
    const int h = kHeight;
    depth_api_softfilter(buffer.data(), image.data(), nullptr, w, h, table, 9, 7, 64, 20, 4, 4, 0, 1);
    depth_api_margin_filter(image.data(), w, h, 3, 3, 20, 20);
    depth_api_spatial_filter_origin_lut(image.data(), kWidth, kHeight, table, 9, 7, 1, 4, 1, 1, 0.3f);
    depth_api_temporal_filter(image.data(), w, h, history.data(), 0.1f, 0.4f);
    depth_api_hole_filling_filter(image.data(), w, kHeight, 2);
    return image;
  };
  std::vector<Pixels> results(6);
  std::vector<std::function<void()>> work;
  for (unsigned i = 0; i < results.size(); ++i) {
    work.push_back([&, i] {
      for (int n = 0; n < 20; ++n) results[i] = filtered(i);
    });
  }
  at_once(work);
  for (unsigned i = 0; i < results.size(); ++i) EXPECT_EQ(results[i], filtered(i));
}

}  // namespace
}  // namespace filterprocessor
