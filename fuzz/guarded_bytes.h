#ifndef FILTERPROCESSOR_FUZZ_GUARDED_BYTES_H
#define FILTERPROCESSOR_FUZZ_GUARDED_BYTES_H

#include <cstddef>
#include <span>

namespace filterprocessor::fuzz {

/// Where bytes lie between their guard pages: against one of them but for `gap` bytes.
struct Placement {
  bool at_end = true;
  std::size_t gap = 0;
};

/// A copy of some bytes between two pages that cannot be touched. The sanitizer knows that the rest of
/// the pages in between is out of bounds too.
class GuardedBytes {
 public:
  GuardedBytes(std::span<const std::byte> content, const Placement& placement);
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  ~GuardedBytes();

  std::byte* data() const { return bytes_.data(); }
  std::span<const std::byte> bytes() const { return bytes_; }

 private:
  std::span<std::byte> pages_;  // the guard pages included
  std::span<std::byte> bytes_;
};

}  // namespace filterprocessor::fuzz

#endif
