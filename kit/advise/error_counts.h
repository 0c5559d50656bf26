#ifndef KIT_ADVISE_ERROR_COUNTS_H
#define KIT_ADVISE_ERROR_COUNTS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kit {

/// Numbers from 0 up, kept to within a hundredth of themselves.
class ErrorCounts {
 public:
  void add(float error) {
    counts_[std::bit_cast<std::uint32_t>(error) >> kShift] += 1;
    total_ += 1;
  }
  /// Others, that stand for `weight` numbers in all.
  void add(const ErrorCounts& other, double weight) {
    if (other.total_ <= 0 || weight <= 0) return;
    for (std::size_t i = 0; i < counts_.size(); ++i)
      counts_[i] += other.counts_[i] * weight / other.total_;
    total_ += weight;
  }
  double total() const { return total_; }
  /// The value with `part` (0 to 1) of all up to it, between the ends of its class; nothing without values.
  std::optional<double> quantile(double part) const {
    if (total_ <= 0) return std::nullopt;
    double seen = 0;
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      if (seen + counts_[i] >= part * total_ && counts_[i] > 0) {
        const auto end = [](std::size_t at) {
          return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(at << kShift)));
        };
        return end(i) + (end(i + 1) - end(i)) * (part * total_ - seen) / counts_[i];
      }
      seen += counts_[i];
    }
    return std::nullopt;
  }

 private:
  static constexpr int kShift = 17;  // 64 classes an octave

  std::vector<double> counts_ = std::vector<double>(std::size_t{0x7F80'0000} >> kShift);
  double total_ = 0;
};

}  // namespace kit

#endif
