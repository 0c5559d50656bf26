#include "kit/advise/prediction.h"

#include <cmath>

namespace kit {

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

void Prediction::add_between(const Inverses& filtered, const Inverses& raw, const Lattice& lattice) {
  for (std::size_t i = 1; i + 1 < filtered.size(); ++i) {
    const bool inside = i % lattice.columns() != 0 && (i + 1) % lattice.columns() != 0;
    if (inside && raw[i] > 0 && filtered[i - 1] > 0 && filtered[i + 1] > 0)
      add((filtered[i - 1] + filtered[i + 1]) / 2, raw[i]);
  }
}

}  // namespace kit
