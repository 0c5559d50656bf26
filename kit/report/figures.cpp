#include "kit/report/figures.h"

#include <cmath>

#include "kit/common/text.h"
#include "kit/report/encoding.h"
#include "kit/report/html_text.h"
#include "kit/report/pictures.h"
#include "kit/report/plots.h"

namespace kit {

namespace {

/// @param color_at a place from 0 to 1
template <typename ColorAt>
std::string gradient(const ColorAt& color_at) {
  constexpr int kStops = 32;
  std::string stops;
  for (int i = 0; i <= kStops; ++i)
    stops += concat(',', css_color(color_at(static_cast<double>(i) / kStops)));
  return "linear-gradient(90deg" + stops + ")";
}

std::string swatch(const std::string& style, const char* words) {
  return concat("<span class=\"swatch\"><i style=\"", style, "\"></i>", words, "</span>");
}

std::string tick(double position, const std::string& words) {
  const char* edge = position < 0.05 ? " class=\"first\"" : position > 0.95 ? " class=\"last\"" : "";
  return concat("<span", edge, " style=\"left:", fixed_text(100 * position, 2), "%\">", words, "</span>");
}

std::string size_text(const Frame& frame) { return concat(frame.width, "\u202f×\u202f", frame.height); }

std::string sampled_note(const Frame& frame) {
  const std::uint32_t step = picture_step(frame);
  return step == 1 ? ""
                   : concat("; every ", step,
                            step == 2   ? "nd"
                            : step == 3 ? "rd"
                                        : "th",
                            " pixel shown");
}

}  // namespace

std::string Figures::image(const Side& side, PixelData data) {
  const Interval& range = range_of(Unit(*side.frame));
  std::string& uri = images_[side.id];
  if (uri.empty()) uri = png_uri(depth_picture(*side.frame, range));
  std::string attributes;
  if (data == PixelData::exact) {
    need(side);
    attributes = concat(" data-pixels=\"", side.id, "\" data-low=\"", number_text(range.low),
                        "\" data-high=\"", number_text(range.high), '"');
  }
  return concat("<img src=\"", uri, "\" width=\"", side.frame->width, "\" height=\"", side.frame->height,
                "\" alt=\"", escaped(side.caption), ", in colours from near to far\"", attributes, ">");
}

std::string Figures::legend(const Unit& unit) const {
  const Interval& range = range_of(unit);
  std::string ticks;
  Interval shown{unit.shown(range.low), unit.shown(range.high)};
  if (shown.low > shown.high) std::swap(shown.low, shown.high);
  for (const double value : axis_ticks(shown, 5)) {
    const double position = (unit.shown(value) - range.low) / (range.high - range.low);
    ticks += tick(position, tick_text(value));
  }
  return concat(
      "<div class=\"legend\"><div class=\"scale\"><div class=\"bar\"></div><div class=\"ticks\">", ticks,
      "</div></div><span class=\"unit\">", unit.name(), "</span>",
      swatch("background:var(--invalid)", unit.is_depth() ? "no depth" : "no disparity"), "</div>");
}

std::string Figures::pair(const Side& before, const Side& after, PixelData data) {
  const Unit old_unit(*before.frame), new_unit(*after.frame);
  const auto side = [&](const Side& shown, const char* name) {
    return concat("<div class=\"side ", name, "\">", image(shown, data), "<span class=\"name\">",
                  escaped(shown.caption), "</span></div>");
  };
  const bool one_scale = old_unit == new_unit;
  return concat(
      "<figure class=\"pair", same_shape(*before.frame, *after.frame) ? "" : " apart",
      "\"><div class=\"view\" style=\"--shape:", before.frame->width, '/', before.frame->height, "\">",
      side(before, "before"), side(after, "after"), "</div>",
      one_scale ? legend(new_unit) : legend(old_unit) + legend(new_unit),
      "<figcaption><output class=\"probe\"></output><span class=\"size\">", size_text(*before.frame),
      size_text(*before.frame) == size_text(*after.frame) ? "" : concat(" → ", size_text(*after.frame)),
      sampled_note(*before.frame), "</span></figcaption></figure>\n");
}

std::string Figures::single(const Side& side, PixelData data) {
  return concat("<figure><div class=\"still\">", image(side, data), "<span class=\"name\">",
                escaped(side.caption), "</span></div>", legend(Unit(*side.frame)), "</figure>\n");
}

std::string Figures::difference(const Side& before, const Side& after, const std::string& caption) {
  if (!same_shape(*before.frame, *after.frame) || Unit(*before.frame) != Unit(*after.frame)) return "";
  std::string& figure = differences_[before.id + ' ' + after.id];
  if (!figure.empty()) return figure;
  const Difference difference = difference_of(*before.frame, *after.frame);
  const double limit = difference.limit;
  std::string ticks;
  for (const double value : axis_ticks({-limit, limit}, 5)) {
    ticks += tick((value + limit) / (2 * limit), concat(value > 0 ? "+" : "", tick_text(value)));
  }
  const auto& colors = Difference::kind_colors();
  const auto kind = [&](Difference::Kind which, const char* words) {
    return swatch("background:" + css_color(colors[which]), words);
  };
  figure =
      concat("<figure class=\"difference\"><div class=\"still\"><img src=\"", png_uri(difference.picture),
             "\" width=\"", before.frame->width, "\" height=\"", before.frame->height, "\" alt=\"",
             escaped(caption), ": blue is nearer, red farther\"><span class=\"name\">", escaped(caption),
             "</span></div><div class=\"legend\"><div class=\"scale\"><div class=\"bar\"></div><div "
             "class=\"ticks\">",
             ticks, "</div></div><span class=\"unit\">", Unit(*after.frame).name(), "</span>",
             kind(Difference::gained, "gained"), kind(Difference::lost, "lost"),
             kind(Difference::none, "none in both"), "</div></figure>\n");
  return figure;
}

void Figures::need(const Side& side) {
  needed_.insert(side.id);
  if (!packed_.contains(side.id)) packed_[side.id] = packed(side);
  if (based_.contains(side.id)) need(*side.base);
}

std::string Figures::meaning_id(const Frame& frame) {
  enum Kind : std::uint16_t { invalid, positive, negative };
  const Meaning meaning(frame);
  std::vector<std::uint16_t> table;  // what kind of number a pixel is, then its magnitude
  for (const double value : meaning.values())
    table.push_back(std::isnan(value) ? invalid : value < 0 ? negative : positive);
  for (const double value : meaning.values())
    table.push_back(std::isnan(value)
                        ? std::uint16_t{0}
                        : static_cast<std::uint16_t>(std::lround(std::abs(value) / meaning.scale())));
  return meanings_.emplace(pack_samples(table), concat('m', meanings_.size())).first->second;
}

std::string Figures::packed(const Side& side) {
  const Frame& frame = *side.frame;
  const Meaning meaning(frame);
  std::string samples = pack_samples(frame.pixels), base;
  if (side.base != nullptr && frame.pixels.size() == side.base->frame->pixels.size()) {
    std::string rest = pack_samples(frame.pixels, side.base->frame->pixels);
    if (rest.size() < samples.size()) {
      samples = std::move(rest);
      base = side.base->id;
      based_.insert(side.id);
    }
  }
  return concat("<script type=\"text/plain\" id=\"", side.id, "\" data-width=\"", frame.width,
                "\" data-height=\"", frame.height, "\" data-base=\"", base, "\" data-meaning=\"",
                meaning_id(frame), "\" data-scale=\"", number_text(meaning.scale()), "\" data-unit=\"",
                Unit(frame).name(), "\">", samples, "</script>\n");
}

std::string Figures::take_data() {
  std::string out;
  for (const auto& [table, id] : meanings_)
    out += concat("<script type=\"text/plain\" id=\"", id, "\">", table, "</script>\n");
  for (const std::string& id : needed_) out += packed_[id];
  needed_.clear();
  return out;
}

std::string figure_styles() {
  std::string out = ":root{";
  for (std::size_t i = 0; i < kColorMapNames.size(); ++i) {
    const auto map = static_cast<ColorMap>(i);
    out +=
        concat("--", kColorMapNames[i], ':', gradient([&](double part) { return color_of(map, part); }),
               ";--", kColorMapNames[i], "-invalid:", css_color(hole_color(map)), ';');
  }
  const std::string_view shown = kColorMapNames[static_cast<std::size_t>(kPictureMap)];
  const std::string difference = gradient([](double part) { return signed_color(2 * part - 1); });
  return out + concat("--map:var(--", shown, ");--invalid:var(--", shown,
                      "-invalid);--difference:", difference, "}\n");
}

std::string figure_settings() {
  std::string out;
  for (std::size_t map = 0; map < kColorMapNames.size(); ++map) {
    std::string colors = hex_text(hole_color(static_cast<ColorMap>(map)));
    for (int i = 0; i < 255; ++i) colors += hex_text(color_of(static_cast<ColorMap>(map), i / 254.0));
    out += concat(out.empty() ? "{" : ",", '"', kColorMapNames[map], "\":\"", colors, '"');
  }
  return out + "}";
}

}  // namespace kit
