#include "kit/advise/prediction.h"

#include <cmath>

namespace kit {

namespace {

constexpr int kReach = 2;
constexpr int kFewest = 12;       // of 25 places
constexpr float kSurface = 0.1f;  // of the inverse depth

}  // namespace

Inverses surfaces_of(const Inverses& raw, const Lattice& lattice) {
  Inverses surfaces(raw.size());
  const std::size_t columns = lattice.columns();
  for (std::size_t row = kReach; row + kReach < lattice.rows(); ++row) {
    for (std::size_t column = kReach; column + kReach < columns; ++column) {
      const std::size_t place = row * columns + column;
      const float here = raw[place];
      if (here <= 0) continue;
      float sum = 0;
      int count = 0;
      for (std::size_t y = row - kReach; y <= row + kReach; ++y) {
        for (std::size_t x = column - kReach; x <= column + kReach; ++x) {
          const float other = raw[y * columns + x];
          if (other <= 0 || std::abs(other - here) > kSurface * here) continue;
          sum += other;
          ++count;
        }
      }
      if (count >= kFewest) surfaces[place] = sum / static_cast<float>(count);
    }
  }
  return surfaces;
}

void Prediction::add(float predicted, float seen) {
  const float error = std::abs(predicted - seen);
  errors.add(error);
  off += error > 0.05f * predicted ? 1 : 0;
}

void Prediction::add(const Inverses& filtered, const Inverses& raw, const Inverses& next) {
  for (std::size_t i = 0; i < filtered.size(); ++i) {
    if (filtered[i] > 0 && raw[i] > 0 && next[i] > 0) add(filtered[i], next[i]);
  }
}

}  // namespace kit
