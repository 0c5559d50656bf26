#include "preview.h"

#include <algorithm>

#include "kit/frame/frame_colors.h"

namespace zvfilter {

namespace {

constexpr std::uint32_t kGap = 8;  // columns between the images

void paint(const kit::ColorImage& image, std::uint32_t left, kit::ColorImage& picture) {
  for (std::size_t y = 0; y < image.height; ++y) {
    std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(y * image.width), image.width,
                picture.pixels.begin() + static_cast<std::ptrdiff_t>(y * picture.width + left));
  }
}

}  // namespace

kit::ColorImage preview(const kit::Frame& before, const kit::Frame& after) {
  const bool same_unit = before.pixel_type == after.pixel_type;
  const kit::DistanceRange both = kit::distance_range({&before, &after});
  const auto colored = [&](const kit::Frame& frame) {
    return kit::color_image(frame, same_unit ? both : kit::distance_range({&frame}));
  };
  const std::uint32_t start = before.width + kGap;
  kit::ColorImage picture{start + after.width, std::max(before.height, after.height), {}};
  picture.pixels.resize(std::size_t{picture.width} * picture.height);
  paint(colored(before), 0, picture);
  paint(colored(after), start, picture);
  return picture;
}

}  // namespace zvfilter
