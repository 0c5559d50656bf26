#ifndef FILTERPROCESSOR_TESTS_CASES_BUFFERS_H
#define FILTERPROCESSOR_TESTS_CASES_BUFFERS_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace filterprocessor {

/// The buffers of one call of a kernel, each between two pages that cannot be touched. The sanitizer knows
/// that the rest of the pages in between is out of bounds too.
class Buffers {
 public:
  /// @param placements  five bits for each buffer
  explicit Buffers(std::uint32_t placements = 0) : placements_(placements) {}
  Buffers(const Buffers&) = delete;
  Buffers& operator=(const Buffers&) = delete;
  ~Buffers();

  /// A copy of the values, which the kernel may change.
  template <typename T>
  T* copy(const std::vector<T>& values) {
    compared_.push_back(add(std::as_bytes(std::span(values)), sizeof(T)));
    return reinterpret_cast<T*>(compared_.back().data());
  }
  /// `size` bytes at any address, whose content does not count afterwards.
  unsigned char* work_space(std::size_t size);

  /// What is not as the plain form left it; empty when nothing is.
  std::string difference_from(const Buffers& plain) const;

 private:
  std::span<std::byte> add(std::span<const std::byte> content, std::size_t unit);

  std::uint32_t placements_;
  std::vector<std::span<std::byte>> pages_;  // the guard pages included
  std::vector<std::span<std::byte>> compared_;
};

}  // namespace filterprocessor

#endif
