#ifndef KIT_REPORT_HTML_TEXT_H
#define KIT_REPORT_HTML_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kit/image/image.h"

namespace kit {

/// The text as it stands in HTML, between tags and in quoted attributes.
std::string escaped(std::string_view text);

/// A dash where there is no number.
std::string fixed_text(std::optional<double> number, int places);
std::string per_cent_text(std::optional<double> share);
/// As many places as a length of this size deserves, and the unit.
std::string length_text(std::optional<double> millimetres);
/// "+12.5", "-3": with its sign.
std::string signed_text(double number, int places);

/// "#0a1b2c"
std::string css_color(const Rgb& color);

}  // namespace kit

#endif
