#ifndef KIT_ADVISE_MEASURES_H
#define KIT_ADVISE_MEASURES_H

#include <array>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// What is measured of a chain. Less is better, of all of them.
enum class Measure { missing, median, percentile95, off, flicker, roughness, speckles, lost, moved };
inline constexpr std::size_t kMeasures = 9;

struct MeasureText {
  Measure measure;
  std::string_view name;
  std::string_view with_truth, without_truth;  ///< what it is; empty: it is not measured then
  double weight, weight_with_truth;
  std::optional<double> limit;  ///< beyond the untouched frames' value, from where on it counts
  double floor;                 ///< the least value of untouched frames that others are compared with
  enum class Unit { share, error } unit;  ///< errors are mm with truth, 1/m without
};
std::span<const MeasureText> measure_texts();
const MeasureText& text_of(Measure measure);

/// The values of a chain; what is not known is nothing.
struct Measures {
  std::array<std::optional<double>, kMeasures> values;
  std::optional<double>& operator[](Measure measure) { return values[static_cast<std::size_t>(measure)]; }
  const std::optional<double>& operator[](Measure measure) const {
    return values[static_cast<std::size_t>(measure)];
  }
};

/// By measure, in the order of measure_texts().
using Weights = std::array<double, kMeasures>;
Weights default_weights(bool with_truth);
/// NAME=VALUE
/// @throws Error naming what is wrong and what it may be
void set_weight(Weights& weights, const std::string& text);

/// The weighted mean of the values as shares of those of the untouched frames: 1 is as good as these, 0 faultless.
double mean_of(const Measures& measures, const Measures& untouched, const Weights& weights);
/// The same and ten times what exceeds a limit.
double loss_of(const Measures& measures, const Measures& untouched, const Weights& weights);
/// The names of measures beyond their limits.
std::vector<std::string_view> beyond_limits(const Measures& measures, const Measures& untouched);
/// With its unit.
std::string value_text(Measure measure, const std::optional<double>& value, bool with_truth);

}  // namespace kit

#endif
