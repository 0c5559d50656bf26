#include "kit/report/html_text.h"

#include <cmath>
#include <iomanip>

#include "kit/common/text.h"

namespace kit {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string fixed_text(std::optional<double> number, int places) {
  return number ? concat(std::fixed, std::setprecision(places), *number) : "–";
}

std::string per_cent_text(std::optional<double> share) {
  return share ? fixed_text(100 * *share, 1) + "\u202f%" : "–";
}

std::string length_text(std::optional<double> millimetres) {
  if (!millimetres) return "–";
  return fixed_text(millimetres, std::abs(*millimetres) < 10 ? 1 : 0) + "\u202fmm";
}

std::string signed_text(double number, int places) {
  return (number < 0 ? "\u2212" : "+") + fixed_text(std::abs(number), places);
}

std::string css_color(const Rgb& color) { return '#' + hex_text(color); }

}  // namespace kit
