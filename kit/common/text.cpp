#include "kit/common/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kit {

namespace {

template <typename Number>
std::optional<Number> parse_whole(std::string_view text) {
  // from_chars knows no plus sign; behind one, no second sign may follow.
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

std::string join(const std::vector<std::string>& texts, std::string_view separator) {
  std::string joined;
  for (const std::string& text : texts) {
    if (&text != &texts.front()) joined += separator;
    joined += text;
  }
  return joined;
}

std::string lower_case(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const auto end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::optional<std::int32_t> parse_integer(std::string_view text) {
  return parse_whole<std::int32_t>(text);
}

std::optional<std::uint64_t> parse_unsigned(std::string_view text) {
  return parse_whole<std::uint64_t>(text);
}

std::optional<double> parse_number(std::string_view text) {
  const auto value = parse_whole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

}  // namespace kit
