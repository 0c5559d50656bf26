#include "kernels/level.h"

#include <array>

namespace filterprocessor {

namespace {

constexpr std::array<std::string_view, 4> kNames = {"scalar", "avx2", "avx512", "neon"};

#if defined(__x86_64__)
constexpr std::array kCompiled = {Level::scalar, Level::avx2, Level::avx512};
#elif defined(__aarch64__)
constexpr std::array kCompiled = {Level::scalar, Level::neon};
#else
constexpr std::array kCompiled = {Level::scalar};
#endif

}  // namespace

std::string_view level_name(Level level) { return kNames[static_cast<std::size_t>(level)]; }

std::optional<Level> level_from_name(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (kNames[i] == name) return static_cast<Level>(i);
  }
  return std::nullopt;
}

std::span<const Level> compiled_levels() { return kCompiled; }

bool machine_runs(Level level) {
  switch (level) {
    case Level::scalar:
      return true;
#if defined(__x86_64__)
    case Level::avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
             __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
             __builtin_cpu_supports("popcnt");
    case Level::avx512:
      return machine_runs(Level::avx2) && __builtin_cpu_supports("avx512f") &&
             __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
             __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
             __builtin_cpu_supports("avx512vbmi2");
#elif defined(__aarch64__)
    case Level::neon:
      return true;  // part of the architecture
#endif
    default:
      return false;
  }
}

Level choose_level(const char* wish) {
#if defined(__x86_64__)
  __builtin_cpu_init();  // this may run before the program's constructors
#endif
  Level best = Level::scalar;
  for (const Level level : kCompiled) {
    if (machine_runs(level)) best = level;
  }
  const auto wished = wish != nullptr ? level_from_name(wish) : std::nullopt;
  return wished && machine_runs(*wished) ? *wished : best;
}

}  // namespace filterprocessor
