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

/// The bytes of the well-formed UTF-8 character that the text starts with.
struct Character {
  std::size_t length;  // 0: there is none
  char32_t code;
};

Character first_character(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {1, lead};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {0, 0};
  char32_t code = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {0, 0};
    code = code << 6 | (byte(i) & 0x3Fu);
  }
  const bool overlong = code < (length == 4 ? 0x10000u : length == 3 ? 0x800u : 0x80u);
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return overlong || surrogate || code > 0x10FFFF ? Character{0, 0} : Character{length, code};
}

bool is_control(char32_t code) {
  const auto in = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  return code < 0x20 || in(0x7F, 0x9F) || code == 0x61C || in(0x200E, 0x200F) || in(0x2028, 0x202E) ||
         in(0x2066, 0x2069);
}

template <typename Number>
std::string shortest_text(Number number) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

}  // namespace

std::string hex_text(std::span<const unsigned char> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const unsigned byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Character character = first_character(text);
    const std::size_t length = std::max<std::size_t>(character.length, 1);
    if (character.length > 0 && !is_control(character.code)) {
      shown += text.substr(0, length);
    } else {
      for (const char c : text.substr(0, length)) {
        const auto byte = static_cast<unsigned char>(c);
        shown += "\\x" + hex_text({&byte, 1});
      }
    }
    text.remove_prefix(length);
  }
  return shown;
}

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

std::string number_text(double number) { return shortest_text(number); }
std::string number_text(float number) { return shortest_text(number); }

std::optional<double> parse_number(std::string_view text) {
  const auto value = parse_whole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

}  // namespace kit
