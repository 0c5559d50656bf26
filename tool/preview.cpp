#include "preview.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>

#include "kit/common/text.h"
#include "kit/image/canvas.h"

namespace zvfilter {

namespace {

using kit::Rgb;

constexpr Rgb kPaper = {24, 24, 24}, kInk = {225, 225, 225};
constexpr std::uint32_t kLeastWidth = 150;  // of a panel, for its legend

struct Swatch {
  std::string name;
  Rgb color;
};

/// An image, what stands above and below it.
struct Panel {
  std::string title;
  kit::ColorImage image;
  double low, high;  // millimetres at the ends of the scale
  std::function<Rgb(double part)> color;
  std::vector<Swatch> swatches;
};

/// What is measured in text pixels: `unit` of the picture's.
struct Layout {
  explicit Layout(std::uint32_t width)
      : unit(width >= 480 ? 2 : 1),
        gap(6 * unit),
        text(kit::kTextHeight * unit),
        bar(8 * unit),
        legend(gap + bar + 2 * unit + text + gap + text) {}

  std::uint32_t unit, gap, text, bar, legend;
};

/// 1, 2 or 5 times a power of ten, and not less than this.
double tick_step(double least) {
  const double decade = std::pow(10, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * decade >= least) return factor * decade;
  }
  return 10 * decade;
}

void draw_ticks(kit::Canvas& canvas, const Layout& layout, const Panel& panel, std::uint32_t left,
                std::uint32_t top, std::uint32_t width) {
  const double range = panel.high - panel.low;
  const std::uint32_t unit_width = (kit::text_width("mm") + 6) * layout.unit;
  if (!(range > 0)) return;
  const double label = (kit::text_width("-00000") + 4) * layout.unit;
  const double step = tick_step(range * label / (width - unit_width));
  for (double tick = std::ceil(panel.low / step) * step; tick <= panel.high + step / 1e6; tick += step) {
    const double value = std::abs(tick) < step / 2 ? 0 : tick;
    const std::string text = kit::number_text(std::round(value * 1000) / 1000);
    const auto x = static_cast<std::uint32_t>((width - 1) * std::min((value - panel.low) / range, 1.0));
    canvas.fill(left + x, top, {layout.unit, 3 * layout.unit}, kInk);
    const std::uint32_t half = kit::text_width(text) * layout.unit / 2;
    const std::uint32_t place = x > half ? x - half : 0;
    if (place + 2 * half + unit_width / 2 > width - unit_width / 2) continue;  // that place is the unit's
    canvas.write(text, left + place, top + 4 * layout.unit, kInk, layout.unit);
  }
  canvas.write("mm", left + width - kit::text_width("mm") * layout.unit, top + 4 * layout.unit, kInk,
               layout.unit);
}

void draw_legend(kit::Canvas& canvas, const Layout& layout, const Panel& panel, std::uint32_t left,
                 std::uint32_t top) {
  const std::uint32_t width = std::max(panel.image.width, kLeastWidth * layout.unit);
  top += layout.gap;
  for (std::uint32_t x = 0; x < width; ++x)
    canvas.fill(left + x, top, {1, layout.bar}, panel.color((x + 0.5) / width));
  top += layout.bar;
  draw_ticks(canvas, layout, panel, left, top, width);
  top += 2 * layout.unit + layout.text + layout.gap;
  for (const Swatch& swatch : panel.swatches) {
    canvas.fill(left, top, {layout.text, layout.text}, swatch.color);
    left += layout.text + 3 * layout.unit;
    canvas.write(swatch.name, left, top, kInk, layout.unit);
    left += (kit::text_width(swatch.name) + 8) * layout.unit;
  }
}

kit::ColorImage arrange(const std::vector<Panel>& panels) {
  const Layout layout(panels.front().image.width);
  const auto width_of = [&](const Panel& panel) {
    return std::max(panel.image.width, kLeastWidth * layout.unit);
  };
  kit::Size size = {layout.gap, 0};
  for (const Panel& panel : panels) {
    size.width += width_of(panel) + layout.gap;
    size.height = std::max(size.height, panel.image.height);
  }
  const std::uint32_t top = 2 * layout.gap + layout.text;
  size.height += top + layout.legend + layout.gap;
  kit::Canvas canvas(size, kPaper);
  std::uint32_t left = layout.gap;
  for (const Panel& panel : panels) {
    canvas.write(panel.title, left, layout.gap, kInk, layout.unit);
    canvas.paint(panel.image, left, top);
    draw_legend(canvas, layout, panel, left, top + panel.image.height);
    left += width_of(panel) + layout.gap;
  }
  return canvas.take();
}

}  // namespace

Preview::Preview(const PreviewSettings& settings) : colors_(settings.colors), range_(settings.range) {}

PictureScale Preview::scale_of(const kit::FrameView& before, const kit::FrameView& after) {
  if (!range_) range_ = kit::depth_range({before, after});
  if (change_limit_ == 0 && same_size(before, after)) change_limit_ = kit::change_limit(before, after);
  return {range_.value_or(kit::DepthRange{0, 1}), change_limit_};
}

kit::ColorImage Preview::draw(const PictureScale& scale, const kit::FrameView& before,
                              const kit::FrameView& after) const {
  const kit::DepthRange& range = scale.range;
  const double change_limit = scale.change_limit;
  const auto panel = [&](const char* title, const kit::FrameView& frame) {
    return Panel{title,
                 kit::color_image(frame, range, colors_),
                 range.near,
                 range.far,
                 [map = colors_](double part) { return kit::color_of(map, part); },
                 {{"hole", kit::hole_color(colors_)}}};
  };
  std::vector<Panel> panels = {panel("before", before), panel("after", after)};
  if (same_size(before, after)) {
    const kit::HoleColors holes;
    panels.push_back({"change",
                      kit::difference_image(before, after, change_limit),
                      -change_limit,
                      change_limit,
                      [](double part) { return kit::signed_color(2 * part - 1); },
                      {{"filled", holes.filled}, {"removed", holes.removed}, {"hole", holes.hole}}});
  }
  return arrange(panels);
}

}  // namespace zvfilter
