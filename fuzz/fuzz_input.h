#ifndef FILTERPROCESSOR_FUZZ_FUZZ_INPUT_H
#define FILTERPROCESSOR_FUZZ_FUZZ_INPUT_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <span>

namespace filterprocessor::fuzz {

/// Reads a fuzzer's bytes one after the other as numbers; past the end they are 0, which is the usual
/// choice of everything below.
class FuzzInput {
 public:
  explicit FuzzInput(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  bool empty() const { return rest_.empty(); }

  /// Any bits.
  template <typename T>
  T number() {
    T value{};
    const auto part = take(sizeof value);
    if (!part.empty()) std::memcpy(&value, part.data(), part.size());
    return value;
  }
  bool flag() { return number<std::uint8_t>() % 2 != 0; }
  bool one_in(int n) { return number<std::uint8_t>() % n == 1; }
  /// From first to last, at most 65536 of them.
  int integer(int first, int last) { return first + number<std::uint16_t>() % (last - first + 1); }
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[number<std::uint8_t>() % values.size()];
  }

  /// The next `most` bytes or what is left of them.
  std::span<const std::uint8_t> take(std::size_t most) {
    const auto part = rest_.first(std::min(most, rest_.size()));
    rest_ = rest_.subspan(part.size());
    return part;
  }
  std::span<const std::uint8_t> take_rest() { return take(rest_.size()); }

 private:
  std::span<const std::uint8_t> rest_;
};

}  // namespace filterprocessor::fuzz

#endif
