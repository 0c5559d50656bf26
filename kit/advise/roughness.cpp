#include "kit/advise/roughness.h"

#include <cmath>

namespace kit {

void add_roughness(const Inverses& filtered, const Lattice& lattice, ErrorCounts& errors) {
  const std::size_t columns = lattice.columns();
  const auto add = [&](std::size_t i, std::size_t apart) {
    const float before = filtered[i - apart], here = filtered[i], after = filtered[i + apart];
    if (before > 0 && here > 0 && after > 0) errors.add(std::abs((before + after) / 2 - here));
  };
  for (std::size_t row = 1; row + 1 < lattice.rows(); ++row) {
    for (std::size_t column = 1; column + 1 < columns; ++column) {
      add(row * columns + column, 1);
      add(row * columns + column, columns);
    }
  }
}

}  // namespace kit
