#include "kit/common/suggestions.h"

#include <algorithm>
#include <numeric>

#include "kit/common/text.h"

namespace kit {

std::size_t edit_distance(std::string_view a, std::string_view b) {
  // The distances of the first i characters of a to every start of b.
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] != b[j - 1] ? 1 : 0);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

std::string suggest(std::string_view text, const std::vector<std::string>& candidates) {
  const std::string wanted = lower_case(text);
  std::size_t nearest = std::max<std::size_t>(2, wanted.size() / 3);
  std::vector<std::string> near;
  for (const std::string& candidate : candidates) {
    const std::string known = lower_case(candidate);
    // A piece of a name is as good as a slip of the finger.
    const bool piece = wanted.size() > 2 && known.find(wanted) != std::string::npos;
    const std::size_t distance = std::min(edit_distance(wanted, known), std::size_t{piece ? 1u : ~0u});
    if (distance > nearest) continue;
    if (distance < nearest) near.clear();
    nearest = distance;
    near.push_back(candidate);
  }
  if (!near.empty()) return "did you mean " + join(near, " or ") + "?";
  return candidates.empty() ? "there is none" : "known: " + join(candidates, ", ");
}

}  // namespace kit
