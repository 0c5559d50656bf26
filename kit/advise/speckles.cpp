#include <algorithm>
#include <cmath>
#include <optional>

#include "kit/advise/planting.h"

namespace kit {

namespace {

constexpr std::size_t kCell = 24;

/// The value of a pixel whose inverse depth is nearest to what is wanted.
class ValueFinder {
 public:
  explicit ValueFinder(const PlantedFrame& planted) : inverses_(planted.inverses) {
    for (std::size_t i = 0; i < kSampleValues; ++i) {
      const auto value = static_cast<std::uint16_t>(i);
      if (inverses_[value] > 0) values_.push_back(value);
    }
    std::stable_sort(values_.begin(), values_.end(),
                     [&](std::uint16_t a, std::uint16_t b) { return inverses_[a] < inverses_[b]; });
  }
  std::optional<std::uint16_t> find(float inverse) const {
    const auto found =
        std::lower_bound(values_.begin(), values_.end(), inverse,
                         [&](std::uint16_t value, float wanted) { return inverses_[value] < wanted; });
    return found != values_.end() ? std::optional(*found) : std::nullopt;
  }

 private:
  const InverseTable& inverses_;
  std::vector<std::uint16_t> values_;
};

}  // namespace

std::vector<Planted> plant_speckles(PlantedFrame& planted, Chance& chance) {
  Frame& frame = planted.frame;
  const ValueFinder values(planted);
  std::vector<Planted> speckles;
  for (std::size_t top = 4; top + kCell < frame.height; top += kCell) {
    for (std::size_t left = 4; left + kCell < frame.width; left += kCell) {
      const std::size_t x0 = left + chance.below(kCell - 8), y0 = top + chance.below(kCell - 8);
      const double radius = 0.5 + 3.5 * chance.share();
      const double factor = 1.2 + 1.8 * chance.share();
      const bool nearer = chance.below(2) == 0, planted_here = chance.below(3) == 0;
      const float inverse = planted.inverses[frame.pixels[y0 * frame.width + x0]];
      if (!planted_here || inverse <= 0) continue;
      const auto value = values.find(static_cast<float>(inverse * (nearer ? factor : 1 / factor)));
      if (!value) continue;
      for (std::size_t y = y0 - 4; y <= y0 + 4; ++y) {
        for (std::size_t x = x0 - 4; x <= x0 + 4; ++x) {
          if (std::hypot(static_cast<double>(x) - static_cast<double>(x0),
                         static_cast<double>(y) - static_cast<double>(y0)) > radius)
            continue;
          std::uint16_t& pixel = frame.pixels[y * frame.width + x];
          if (planted.inverses[pixel] <= 0) continue;
          speckles.push_back({y * frame.width + x, planted.inverses[pixel], planted.inverses[*value]});
          pixel = *value;
        }
      }
    }
  }
  return speckles;
}

void Speckles::add(const std::vector<Planted>& speckles, const InverseTable& inverses,
                   std::span<const std::uint16_t> filtered) {
  for (const Planted& each : speckles) {
    count += 1;
    const float found = inverses[filtered[each.pixel]];
    left += found > 0 && std::abs(found - each.after) < std::abs(found - each.before) ? 1 : 0;
  }
}

}  // namespace kit
