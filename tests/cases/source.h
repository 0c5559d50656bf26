#ifndef FILTERPROCESSOR_TESTS_CASES_SOURCE_H
#define FILTERPROCESSOR_TESTS_CASES_SOURCE_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <random>
#include <span>

namespace filterprocessor {

/// Where choices come from: a fuzzer's bytes, read one after the other and 0 past their end, which is the
/// usual choice of everything below, or random numbers, the same in every run.
class Source {
 public:
  explicit Source(std::span<const std::uint8_t> bytes) : rest_(bytes) {}
  explicit Source(std::uint32_t seed) : random_(seed) {}

  /// Whether a fuzzer's bytes are used up.
  bool empty() const { return rest_.empty(); }

  /// Any bits.
  template <typename T>
  T number() {
    std::uint8_t bytes[sizeof(T)] = {};
    if (random_) {
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>((*random_)());
    } else {
      std::ranges::copy(take(sizeof bytes), bytes);
    }
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
  }
  bool flag() { return number<std::uint8_t>() % 2 != 0; }
  bool one_in(int n) { return number<std::uint8_t>() % n == 1; }
  /// From first to last, at most 65536 of them.
  int integer(int first, int last) { return first + number<std::uint16_t>() % (last - first + 1); }
  std::size_t size(int first, int last) { return static_cast<std::size_t>(integer(first, last)); }
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[number<std::uint8_t>() % values.size()];
  }

  /// The next `most` of a fuzzer's bytes or what is left of them.
  std::span<const std::uint8_t> take(std::size_t most) {
    const auto part = rest_.first(std::min(most, rest_.size()));
    rest_ = rest_.subspan(part.size());
    return part;
  }
  std::span<const std::uint8_t> take_rest() { return take(rest_.size()); }

 private:
  std::span<const std::uint8_t> rest_;
  std::optional<std::mt19937> random_;
};

}  // namespace filterprocessor

#endif
