#include "kit/advise/rest.h"

#include <algorithm>
#include <cmath>

#include "kit/measure/steadiness.h"

namespace kit {

namespace {

constexpr float kEdge = 0.1f;  // of the inverse depth

float median_of(std::vector<float>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

RestingPlaces::RestingPlaces(std::span<const Inverses> raw, const Lattice& lattice) {
  std::vector<float> medians(lattice.size());
  std::vector<float> values;
  for (std::size_t i = 0; i < lattice.size(); ++i) {
    values.clear();
    for (const Inverses& frame : raw) {
      if (frame[i] > 0) values.push_back(frame[i]);
    }
    if (values.empty() || (raw.size() > 1 && !is_at_rest(values, raw.size()))) continue;
    medians[i] = median_of(values);
    places_.push_back(i);
  }
  const std::size_t columns = lattice.columns();
  for (const std::size_t i : places_) {
    const auto try_edge = [&](bool inside, std::size_t other) {
      if (!inside || medians[other] <= 0) return false;
      if (std::abs(medians[i] - medians[other]) <= kEdge * std::max(medians[i], medians[other]))
        return false;
      edges_.push_back({i, medians[i], medians[other]});
      return true;
    };
    const std::size_t column = i % columns;
    static_cast<void>(try_edge(column > 0, i - 1) || try_edge(column + 1 < columns, i + 1) ||
                      try_edge(i >= columns, i - columns) ||
                      try_edge(i + columns < lattice.size(), i + columns));
  }
}

void Rest::add(const RestingPlaces& at_rest, const Inverses& raw, const Inverses& filtered,
               const Inverses& last) {
  for (const std::size_t i : at_rest.places()) {
    if (!last.empty() && filtered[i] > 0 && last[i] > 0) changes.add(std::abs(filtered[i] - last[i]));
    if (raw[i] <= 0) continue;
    seen += 1;
    lost += filtered[i] <= 0 ? 1 : 0;
  }
  for (const RestingPlaces::Edge& edge : at_rest.edges()) {
    if (filtered[edge.place] <= 0) continue;
    at_edges += 1;
    const float off = std::abs(filtered[edge.place] - edge.here);
    moved += off > std::abs(filtered[edge.place] - edge.beyond) ? 1 : 0;
  }
}

}  // namespace kit
