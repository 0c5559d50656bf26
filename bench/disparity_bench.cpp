#include <cmath>
#include <memory>

#include "filters/depth_converter.h"
#include "rows.h"

namespace filterprocessor::bench {

namespace {

/// Two cameras 50 mm apart, 593.6 pixels of focal length, depth in millimetres.
StereoRule stereo_rule(int bits, double offset) {
  return {.layout = CodeLayout::linear,
          .scale = std::ldexp(1.0, bits - 8),
          .focal_baseline = 29680,
          .unit = 1,
          .disparity_offset = offset,
          .metadata_offset = 0,
          .min_disparity = 0,
          .disparity_end = 256,
          .invalid_disparity = 0,
          .limits = {100, 10000, 65536}};
}

MonoRule mono_rule() {
  return {.layout = CodeLayout::linear,
          .scale = 256,
          .numerator = 1000,
          .slope = 1000.0 / 29680,
          .disparity_offset = -29.68,
          .limits = {100, 10000, 65536}};
}

/// The room as codes of the stereo rule.
Image codes_of_room(Size size, int bits, bool packed) {
  Image image = stereo_scene(size.width, size.height);
  for (std::uint16_t& pixel : image.pixels) {
    if (pixel == 0) continue;
    const int code = static_cast<int>(29680.0 / pixel * std::ldexp(1.0, bits - 8));
    pixel = static_cast<std::uint16_t>(packed ? code << 4 : code);
  }
  return image;
}

void add_conversion(const std::string& name, Size size, int bits, double offset, bool packed) {
  Row row(name, codes_of_room(size, bits, packed));
  const std::size_t count = row.image().size();
  auto target = std::make_shared<std::vector<std::uint16_t>>(count);
  row.add_levels_reading([=](const KernelSet& kernels) {
    auto converter =
        std::make_shared<DepthConverter>(stereo_rule(bits, offset), std::size_t{1} << bits, kernels);
    return [=](const std::uint16_t* pixels) {
      packed ? converter->convert_packed(pixels, target->data(), count)
             : converter->convert(pixels, target->data(), count);
    };
  });
}

}  // namespace

void add_disparity_rows() {
  for (const Size size : kSizes) {
    add_conversion("disparity to depth, computed", size, 14, 0, false);
    add_conversion("disparity to depth, packed", size, 12, 0, true);
    Row correction("depth correction", stereo_scene(size.width, size.height));
    const std::size_t count = correction.image().size();
    correction.add_levels([count](const KernelSet& kernels, std::uint16_t* pixels) {
      kernels.correction.clear_depth(pixels, count, 1.0f, 3710);
    });
  }
  add_conversion("disparity to depth, fractional offset", {848, 480}, 14, 0.37, false);

  // A table has 65536 entries, as many as this image has pixels.
  Row stereo("stereo table, 65536 entries", Image(256, 256));
  stereo.add_levels([rule = stereo_rule(16, 0)](const KernelSet& kernels, std::uint16_t* table) {
    kernels.depth_table.stereo(rule, table, kMaxDepthTable);
  });
  Row mono("mono table, 65536 entries", Image(256, 256));
  mono.add_levels([rule = mono_rule()](const KernelSet& kernels, std::uint16_t* table) {
    kernels.depth_table.mono(rule, table, kMaxDepthTable);
  });
}

}  // namespace filterprocessor::bench
