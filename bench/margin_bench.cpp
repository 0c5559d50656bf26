#include "rows.h"

namespace filterprocessor::bench {

namespace {

void add_margins(const std::string& name, Size size, const MarginRule& rule) {
  Row row(name + ", room", stereo_scene(size.width, size.height));
  row.add_levels([=](const KernelSet& kernels, std::uint16_t* pixels) {
    kernels.margin.clear(pixels, size.width, size.height, rule);
  });
}

}  // namespace

void add_margin_rows() {
  for (const Size size : kSizes) {
    add_margins("margins horizontal", size, {.left = 6, .right = 6, .limit_x = 70});
    add_margins("margins two-dimensional", size,
                {.left = 6, .right = 6, .limit_x = 70, .margin_y = 6, .limit_y = 30});
  }
}

}  // namespace filterprocessor::bench
