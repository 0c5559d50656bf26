#ifndef FILTERPROCESSOR_TESTS_CASES_BUFFERS_H
#define FILTERPROCESSOR_TESTS_CASES_BUFFERS_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace filterprocessor {

/// A copy of some bytes between two pages that cannot be touched. The sanitizer knows that the rest of the
/// pages in between is out of bounds too.
class GuardedBytes {
 public:
  /// The copy lies `gap` bytes from the guard page at the end, or from the other one.
  GuardedBytes(std::span<const std::byte> content, std::size_t gap, bool at_end);
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  ~GuardedBytes();

  std::span<std::byte> bytes() const { return bytes_; }

 private:
  std::span<std::byte> pages_;  // the guard pages included
  std::span<std::byte> bytes_;
};

/// The buffers of one call of a kernel, each between guard pages.
class Buffers {
 public:
  /// @param placements  five bits for each buffer
  explicit Buffers(std::uint32_t placements = 0) : placements_(placements) {}

  /// A copy of the values, which the kernel may change.
  template <typename T>
  T* copy(const std::vector<T>& values) {
    return reinterpret_cast<T*>(add(std::as_bytes(std::span(values)), sizeof(T), compared_));
  }
  /// `size` bytes at any address, whose content does not count afterwards.
  unsigned char* work_space(std::size_t size);

  /// What is not as the plain form left it; empty when nothing is.
  std::string difference_from(const Buffers& plain) const;

 private:
  using List = std::vector<std::unique_ptr<GuardedBytes>>;
  std::byte* add(std::span<const std::byte> content, std::size_t unit, List& list);

  std::uint32_t placements_;
  List compared_, work_spaces_;
};

}  // namespace filterprocessor

#endif
