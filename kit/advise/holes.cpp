#include "kit/advise/holes.h"

#include <algorithm>
#include <cmath>

namespace kit {

namespace {

constexpr float kEdge = 0.1f;  // of the inverse depth

float behind(float left, float right) {
  if (left <= 0 || right <= 0) return kUnknown;
  return std::abs(left - right) > kEdge * std::max(left, right) ? std::min(left, right) : 0;
}

}  // namespace

Inverses behind_holes(const Inverses& raw, const Lattice& lattice) {
  Inverses result(raw.size());
  const std::size_t columns = lattice.columns();
  for (std::size_t row = 0; row < lattice.rows(); ++row) {
    const float* const line = raw.data() + row * columns;
    for (std::size_t begin = 0; begin < columns;) {
      std::size_t end = begin;
      while (end < columns && line[end] <= 0) ++end;
      const float value = behind(begin > 0 ? line[begin - 1] : 0, end < columns ? line[end] : 0);
      std::fill_n(result.begin() + static_cast<std::ptrdiff_t>(row * columns + begin), end - begin,
                  value);
      begin = end + 1;
    }
  }
  return result;
}

void FilledHoles::add(const Inverses& behind, const Inverses& raw, const Inverses& filtered) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] > 0 || filtered[i] <= 0) continue;
    if (behind[i] == 0) {
      within += 1;
    } else {
      between.add(filtered[i], std::max(behind[i], 0.0f));
    }
  }
}

}  // namespace kit
