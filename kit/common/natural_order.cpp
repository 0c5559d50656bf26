#include "kit/common/natural_order.h"

#include <algorithm>
#include <cstddef>

namespace kit {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Takes the digits off the front and gives them without leading zeros.
std::string_view take_number(std::string_view& text) {
  const auto end =
      static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_digit) - text.begin());
  std::string_view number = text.substr(0, end);
  text.remove_prefix(end);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

/// Below, at or above 0 as `a` comes before, with or after `b`.
int compare(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (is_digit(a.front()) && is_digit(b.front())) {
      const std::string_view m = take_number(a), n = take_number(b);
      if (m.size() != n.size()) return m.size() < n.size() ? -1 : 1;
      if (const int order = m.compare(n); order != 0) return order;
    } else {
      if (const int order = a.substr(0, 1).compare(b.substr(0, 1)); order != 0) return order;
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace

bool natural_less(std::string_view a, std::string_view b) {
  const int order = compare(a, b);
  return order != 0 ? order < 0 : a < b;
}

}  // namespace kit
