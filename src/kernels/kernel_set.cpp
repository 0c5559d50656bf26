#include "kernels/kernel_set.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "console/console.h"
#include "kernel_levels.h"

// A level's sets, as their sources define them.
#define DECLARE_SETS(level, features)           \
  namespace level {                             \
  extern const CorrectionKernels correction;    \
  extern const DepthTableKernels depth_table;   \
  extern const DepthLookupKernels depth_lookup; \
  extern const HoleFillingKernels hole_filling; \
  extern const MarginKernels margin;            \
  extern const ResizeKernels resize;            \
  extern const SpeckleKernels speckle;          \
  extern const SpatialKernels spatial;          \
  extern const TemporalKernels temporal;        \
  }
#define KERNEL_SET(name, level, features)                                                       \
  {                                                                                             \
    name, [] { return static_cast<bool>(features); }, level::correction, level::depth_table,    \
        level::depth_lookup, level::hole_filling, level::margin, level::resize, level::speckle, \
        level::spatial, level::temporal                                                         \
  }
#define LEVEL_SET(level, features) , KERNEL_SET(#level, level, features)

namespace filterprocessor {

FILTERPROCESSOR_LEVELS(DECLARE_SETS)

namespace {

constexpr KernelSet kSets[] = {KERNEL_SET("scalar", plain, true) FILTERPROCESSOR_LEVELS(LEVEL_SET)};

/// Says once, and without memory of its own, why a wish is not granted.
void say(const char* wish, const KernelChoice& choice) {
  std::FILE* const out = console_errors();
  if (out == nullptr) return;
  std::fprintf(out, "filterprocessor: FILTERPROCESSOR_CPU=%.40s: %s; using %s. Levels:", wish,
               choice.wish == KernelChoice::unknown ? "no such level" : "this machine lacks that level",
               choice.kernels.level);
  for (const KernelSet& set : kSets) std::fprintf(out, " %s", set.level);
  std::fputc('\n', out);
}

const KernelSet* choose() {
  const char* wish = std::getenv("FILTERPROCESSOR_CPU");
  const KernelChoice choice = choose_kernels(wish);
  if (choice.wish != KernelChoice::granted) say(wish, choice);
  return &choice.kernels;
}

}  // namespace

std::span<const KernelSet> kernel_sets() { return kSets; }

KernelChoice choose_kernels(const char* wish) {
#if defined(__x86_64__)
  __builtin_cpu_init();  // this may run before the program's constructors
#endif
  const KernelSet* best = nullptr;
  const KernelSet* wished = nullptr;
  for (const KernelSet& set : kSets) {
    if (set.machine_runs()) best = &set;
    if (wish != nullptr && std::strcmp(wish, set.level) == 0) wished = &set;
  }
  if (wish == nullptr) return {*best, KernelChoice::granted};
  if (wished == nullptr) return {*best, KernelChoice::unknown};
  return wished->machine_runs() ? KernelChoice{*wished, KernelChoice::granted}
                                : KernelChoice{*best, KernelChoice::lacking};
}

const KernelSet& active_kernels() {
  // The first call is that below; a static constructor of a program that links the library in may be
  // earlier.
  static const KernelSet* const active = choose();
  return *active;
}

namespace {
[[maybe_unused]] const KernelSet& chosen_at_load = active_kernels();
}

}  // namespace filterprocessor
