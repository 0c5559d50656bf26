#include "filterprocessor/spatial.h"

#include "common/saturate.h"
#include "kernels/kernel_set.h"

// The pass kernels' names tell the processor family.
#if defined(__aarch64__)
#define HORIZONTAL_PASS recursive_filter_horizontal_neon2
#define HORIZONTAL_TABLE_PASS recursive_filter_horizontal_lut_neon2
#define VERTICAL_TABLE_PASS recursive_filter_vertical_lut_neon2
#else
#define HORIZONTAL_PASS recursive_filter_horizontal_avx
#define HORIZONTAL_TABLE_PASS recursive_filter_horizontal_lut_avx
#define VERTICAL_TABLE_PASS recursive_filter_vertical_lut_avx
#endif

namespace filterprocessor {

SpatialKernels::Filter HORIZONTAL_PASS, HORIZONTAL_TABLE_PASS, VERTICAL_TABLE_PASS;

void HORIZONTAL_PASS(std::uint16_t* pixels, std::size_t width, std::size_t height,
                     const SpatialParameters& parameters) {
  active_kernels().spatial.horizontal(pixels, width, height, parameters);
}

void HORIZONTAL_TABLE_PASS(std::uint16_t* pixels, std::size_t width, std::size_t height,
                           const SpatialParameters& parameters) {
  active_kernels().spatial.horizontal(pixels, width, height, parameters);
}

void VERTICAL_TABLE_PASS(std::uint16_t* pixels, std::size_t width, std::size_t height,
                         const SpatialParameters& parameters) {
  active_kernels().spatial.vertical(pixels, width, height, parameters);
}

namespace {

struct Image {
  std::uint16_t* pixels;
  std::size_t width, height;
};

struct Passes {
  unsigned horizontal, vertical;
};

bool valid(const Image& image, Passes passes, float alpha, std::int32_t magnitude) {
  return (passes.horizontal | passes.vertical) == 1 && !(alpha > 1) && image.pixels != nullptr &&
         !(alpha < 0) && magnitude >= 1;
}

/// One iteration. Both pairs of passes together are a kernel of their own, which is kinder to the caches.
void filter(const Image& image, Passes passes, const SpatialParameters& parameters,
            SpatialKernels::Filter* horizontal, SpatialKernels::Filter* vertical) {
  SpatialKernels::Filter* const both = active_kernels().spatial.both;
  SpatialKernels::Filter* const kernel =
      passes.vertical == 0 ? horizontal : (passes.horizontal == 0 ? vertical : both);
  kernel(image.pixels, image.width, image.height, parameters);
}

void filter_table(const Image& image, Passes passes, const SpatialParameters& parameters) {
  filter(image, passes, parameters, HORIZONTAL_TABLE_PASS, VERTICAL_TABLE_PASS);
}

void filter_fixed(const Image& image, Passes passes, float disp_diff, float alpha, std::uint8_t radius) {
  // Lanes are 16 bits wide, so they see the low 16 bits of the threshold.
  const auto threshold = static_cast<std::uint16_t>(saturate<std::int32_t>(disp_diff));
  filter(image, passes, {{&threshold, 1, 16}, alpha, radius}, HORIZONTAL_PASS,
         active_kernels().spatial.vertical);
}

}  // namespace
}  // namespace filterprocessor

int32_t depth_api_spatial_filter(uint16_t* data, uint16_t width, uint16_t height, const uint16_t* lut,
                                 uint8_t lut_shift, uint8_t lut_size, int32_t magnitude, uint8_t radius,
                                 uint8_t horizontal, uint8_t vertical, float alpha, float disp_diff) {
  using namespace filterprocessor;
  const Image image = {data, width, height};
  const Passes passes = {horizontal, vertical};
  if (!valid(image, passes, alpha, magnitude)) return -1;
  for (int32_t i = 0; i < magnitude; ++i) {
    if (lut_size == 0) {
      filter_fixed(image, passes, disp_diff, alpha, radius);
    } else {
      filter_table(image, passes, {{lut, lut_size, lut_shift}, alpha, radius});
    }
  }
  return 0;
}

int32_t depth_api_spatial_filter_origin(uint16_t* data, uint16_t width, uint16_t height,
                                        int32_t magnitude, uint8_t radius, uint8_t horizontal,
                                        uint8_t vertical, float alpha, float disp_diff) {
  using namespace filterprocessor;
  const Image image = {data, width, height};
  const Passes passes = {horizontal, vertical};
  if (!valid(image, passes, alpha, magnitude)) return -1;
  filter_fixed(image, passes, disp_diff, alpha, radius);
  return 0;
}

int32_t depth_api_spatial_filter_origin_lut(uint16_t* data, uint16_t width, uint16_t height,
                                            const uint16_t* lut, uint8_t lut_shift, uint8_t lut_size,
                                            int32_t magnitude, uint8_t radius, uint8_t horizontal,
                                            uint8_t vertical, float alpha) {
  using namespace filterprocessor;
  const Image image = {data, width, height};
  const Passes passes = {horizontal, vertical};
  if (!valid(image, passes, alpha, magnitude)) return -1;
  for (int32_t i = 0; i < magnitude; ++i) {
    filter_table(image, passes, {{lut, lut_size, lut_shift}, alpha, radius});
  }
  return 0;
}
