// Everything that may run at the same time, run at the same time. The thread sanitizer is the judge of
// most of it.
#include <atomic>
#include <functional>
#include <thread>

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
  FilterDriver filter(use.name, use.configuration);
  std::vector<Pixels> all;
  for (unsigned n = 0; n < kFrames; ++n)
    all.push_back(filter.filtered(lively_frame(kWidth, kHeight, use.pixel_type, n)));
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
    const devhost::FrameTraits frame = lively_frame(kWidth, kHeight, use.pixel_type, 0);
    FilterDriver filter(name);
    std::vector<Pixels> expected;
    for (const auto& configuration : {use.other, use.configuration}) {
      filter.update(configuration);
      expected.push_back(filter.filtered(frame));
    }
    int torn = 0;
    at_once({[&] {
               for (int n = 0; n < 200; ++n) filter.update(n % 2 == 0 ? use.other : use.configuration);
             },
             [&] {
               for (int n = 0; n < 200; ++n) {
                 const Pixels pixels = filter.filtered(frame);
                 torn += pixels != expected[0] && pixels != expected[1];
               }
             }});
    EXPECT_EQ(torn, 0) << name << ": frames of both configurations or none";
  }
}

}  // namespace
}  // namespace filterprocessor
