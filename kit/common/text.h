#ifndef KIT_COMMON_TEXT_H
#define KIT_COMMON_TEXT_H

#include <cstdint>
#include <locale>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

/// The parts as an output stream prints them, one after the other, whatever locale the process has.
template <typename... Parts>
std::string concat(const Parts&... parts) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  (stream << ... << parts);
  return stream.str();
}

/// The text as a terminal may get it: whatever is no visible character (controls, marks that turn the direction of
/// writing, bytes that are no UTF-8) as \xNN for each of its bytes.
std::string printable(std::string_view text);

/// Two hexadecimal digits a byte.
std::string hex_text(std::span<const unsigned char> bytes);

std::string join(const std::vector<std::string>& texts, std::string_view separator);
std::string lower_case(std::string_view text);
std::vector<std::string_view> split(std::string_view text, char separator);

/// A whole decimal integer of 32 bits, or nothing. A sign is allowed, blanks and anything else are not.
std::optional<std::int32_t> parse_integer(std::string_view text);
/// As parse_integer(), from 0 up and of 64 bits.
std::optional<std::uint64_t> parse_unsigned(std::string_view text);
/// The shortest text that reads as just this number.
std::string number_text(double number);
std::string number_text(float number);
/// A finite decimal number, or nothing.
std::optional<double> parse_number(std::string_view text);

}  // namespace kit

#endif
