/// Runs a kernel at every processor level that the machine has and compares what it leaves with the plain
/// form.
#ifndef FILTERPROCESSOR_FUZZ_LEVELS_H
#define FILTERPROCESSOR_FUZZ_LEVELS_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "guarded_bytes.h"
#include "kernels/kernel_set.h"
#include "target.h"

namespace filterprocessor::fuzz {

/// The buffers of one call of a kernel, each between guard pages.
class Buffers {
 public:
  /// @param placements five bits for each buffer
  explicit Buffers(std::uint32_t placements) : placements_(placements) {}

  /// A copy of the values, which the kernel may change.
  template <typename T>
  T* copy(const std::vector<T>& values) {
    return reinterpret_cast<T*>(add(std::as_bytes(std::span(values)), sizeof(T), compared_));
  }
  /// `size` bytes at any address, whose content does not count afterwards.
  unsigned char* work_space(std::size_t size);

  /// Ends the run unless the copies hold the same as those of the plain form.
  void require_equal(const Buffers& plain, std::string_view level) const;

 private:
  using List = std::vector<std::unique_ptr<GuardedBytes>>;
  std::byte* add(std::span<const std::byte> content, std::size_t unit, List& list);

  std::uint32_t placements_;
  List compared_, others_;
};

/// Calls run(kernels, buffers) for every level; `run` takes its buffers from `buffers` and makes the same
/// call of a kernel each time.
template <typename Run>
void compare_levels(FuzzInput& input, const Run& run) {
  const auto placements = input.number<std::uint32_t>();
  Buffers expected(placements);
  run(kernel_sets().front(), expected);
  for (const KernelSet& set : kernel_sets().subspan(1)) {
    if (!set.machine_runs()) continue;
    Buffers actual(placements);
    run(set, actual);
    actual.require_equal(expected, set.level);
  }
}

}  // namespace filterprocessor::fuzz

#endif
