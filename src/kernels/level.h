#ifndef FILTERPROCESSOR_KERNELS_LEVEL_H
#define FILTERPROCESSOR_KERNELS_LEVEL_H

#include <optional>
#include <span>
#include <string_view>

namespace filterprocessor {

/// The processor levels that kernels are compiled for, the plain form first. `avx2` takes FMA, BMI, BMI2
/// and POPCNT as well; `avx512` is the level of processors with VBMI2: F, BW, DQ, VL, VBMI and VBMI2
/// together.
enum class Level { scalar, avx2, avx512, neon };

/// "scalar", "avx2", "avx512" or "neon".
std::string_view level_name(Level level);
std::optional<Level> level_from_name(std::string_view name);

/// The levels compiled for this processor family, slowest first.
std::span<const Level> compiled_levels();

/// Whether this machine can run a level.
bool machine_runs(Level level);

/// The level to use: the best that the machine runs, or the one that `wish` names if the machine runs it.
/// @param wish a level's name, or null
Level choose_level(const char* wish);

}  // namespace filterprocessor

#endif
