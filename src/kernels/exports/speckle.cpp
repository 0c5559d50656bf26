#include "filterprocessor/speckle.h"

#include "kernels/kernel_set.h"

int32_t Depth_MaxSpeckleSize_160x120 = 30;
int32_t Depth_MaxSpeckleSize_320x240 = 120;
int32_t Depth_MaxSpeckleSize_640x480 = 480;
int32_t Depth_MaxSpeckleSize_1280x960 = 1920;
int32_t Depth_MaxDiff = 16;

namespace {

using filterprocessor::SpeckleImage;
using filterprocessor::SpeckleKernels;
using filterprocessor::SpeckleLimit;
using filterprocessor::SpeckleThreshold;

constexpr int32_t kLargestSide = 32767;

const SpeckleKernels& kernels() { return filterprocessor::active_kernels().speckle; }

bool has_sides(int32_t width, int32_t height, int32_t smallest) {
  return width >= smallest && height >= smallest && width <= kLargestSide && height <= kLargestSide;
}

/// The image as the kernels take it. Its sides have been checked.
SpeckleImage image_of(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height, uint16_t invalid) {
  return {depth, buffer, static_cast<std::size_t>(width), static_cast<std::size_t>(height), invalid};
}

/// Runs `kernel` with the limits of a map unless there is none that fits.
void with_map(SpeckleKernels::Remove* kernel, const SpeckleImage& image,
              const SpeckleThreshold& threshold, const uint16_t* map, int32_t cols, int32_t rows) {
  const SpeckleLimit limit{0, map, static_cast<std::size_t>(cols), static_cast<std::size_t>(rows)};
  const bool fits =
      cols > 0 && rows > 0 && limit.map_cols <= image.width && limit.map_rows <= image.height;
  if (map != nullptr && fits) kernel(image, threshold, limit);
}

struct Form {
  bool pyramid;
  int32_t max_size;
};

Form fixed_form(int32_t width, int32_t height, int32_t max_size) {
  const auto side_is = [=](int32_t side) { return width == side || height == side; };
  const auto pyramid = [=](int32_t otherwise) {
    return Form{true, max_size >= 4 ? max_size >> 2 : otherwise};
  };
  if (side_is(1280)) return pyramid(Depth_MaxSpeckleSize_1280x960);
  if (side_is(640)) return pyramid(Depth_MaxSpeckleSize_640x480);
  if (side_is(320)) return pyramid(Depth_MaxSpeckleSize_320x240);
  if (side_is(160)) return pyramid(Depth_MaxSpeckleSize_160x120);
  // The default is quartered here only.
  if (width == 424 || height == 266) return pyramid(Depth_MaxSpeckleSize_640x480 >> 2);
  return {false, max_size < 1 ? Depth_MaxSpeckleSize_640x480 : max_size};
}

}  // namespace

int32_t depth_api_softfilter(uint8_t* buffer, uint16_t* depth, uint16_t* max_size_map, int32_t width,
                             int32_t height, uint16_t* diff_lut, uint8_t lut_shift, uint8_t lut_size,
                             int32_t max_diff, int32_t max_size, int32_t map_cols, int32_t map_rows,
                             uint16_t invalid_value, int32_t fixed_size) {
  const bool fixed = fixed_size != 0;
  const bool map_pyramid = width == 1280 || height == 1280 || width == 640 || height == 640;
  const Form form = fixed ? fixed_form(width, height, max_size) : Form{map_pyramid, 0};
  if (!has_sides(width, height, form.pyramid ? 2 : 1)) return 0;

  const SpeckleImage image = image_of(buffer, depth, width, height, invalid_value);
  const auto threshold = lut_size != 0 ? SpeckleThreshold::from_table(diff_lut, lut_shift, lut_size)
                                       : SpeckleThreshold::fixed(max_diff);
  SpeckleKernels::Remove* kernel = form.pyramid ? kernels().pyramid : kernels().full;
  if (fixed) {
    kernel(image, threshold, SpeckleLimit::fixed(form.max_size));
  } else {
    with_map(kernel, image, threshold, max_size_map, map_cols, map_rows);
  }
  return 0;
}

void softfilterPyramid(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height, int32_t max_diff,
                       int32_t max_size, uint16_t invalid_value) {
  if (!has_sides(width, height, 2)) return;
  kernels().pyramid(image_of(buffer, depth, width, height, invalid_value),
                    SpeckleThreshold::fixed(max_diff), SpeckleLimit::fixed(max_size));
}

void softfilterPyramid_lut(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height,
                           uint16_t* diff_lut, uint8_t lut_shift, uint8_t lut_size, int32_t max_size,
                           uint16_t invalid_value) {
  if (!has_sides(width, height, 2)) return;
  kernels().pyramid(image_of(buffer, depth, width, height, invalid_value),
                    SpeckleThreshold::from_table(diff_lut, lut_shift, lut_size),
                    SpeckleLimit::fixed(max_size));
}

void filterSpecklePyramid(uint8_t* buffer, uint16_t* depth, uint16_t* max_size_map, int32_t width,
                          int32_t height, int32_t max_diff, int32_t map_cols, int32_t map_rows,
                          uint16_t invalid_value) {
  if (!has_sides(width, height, 2)) return;
  with_map(kernels().pyramid, image_of(buffer, depth, width, height, invalid_value),
           SpeckleThreshold::fixed(max_diff), max_size_map, map_cols, map_rows);
}

void filterSpecklePyramid_lut(uint8_t* buffer, uint16_t* depth, uint16_t* max_size_map, int32_t width,
                              int32_t height, uint16_t* diff_lut, uint8_t lut_shift, uint8_t lut_size,
                              int32_t map_cols, int32_t map_rows, uint16_t invalid_value) {
  if (!has_sides(width, height, 2)) return;
  with_map(kernels().pyramid, image_of(buffer, depth, width, height, invalid_value),
           SpeckleThreshold::from_table(diff_lut, lut_shift, lut_size), max_size_map, map_cols, map_rows);
}

void Softfilter_new(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height, int32_t max_diff,
                    int32_t max_size, uint16_t invalid_value) {
  if (!has_sides(width, height, 1)) return;
  kernels().full(image_of(buffer, depth, width, height, invalid_value), SpeckleThreshold::fixed(max_diff),
                 SpeckleLimit::fixed(max_size));
}

void downSample(const uint16_t* src, uint16_t* dst, int32_t width, int32_t height) {
  if (!has_sides(width, height, 2)) return;
  kernels().downsample(src, static_cast<std::size_t>(width), dst, static_cast<std::size_t>(width / 2),
                       static_cast<std::size_t>(height / 2));
}

void upSample_new(uint16_t* full, const uint16_t* half, int32_t half_width, int32_t half_height,
                  int32_t max_diff) {
  if (!has_sides(half_width, half_height, 1)) return;
  const auto cols = static_cast<std::size_t>(half_width);
  kernels().upsample(full, 2 * cols, half, cols, static_cast<std::size_t>(half_height), max_diff);
}

void softfilterOpt(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height, int32_t max_diff,
                   int32_t max_size, uint16_t invalid_value) {
  if (!has_sides(width, height, 2)) return;
  const auto stride = static_cast<std::size_t>(width);
  const std::size_t half_width = stride / 2;
  const std::size_t half_height = static_cast<std::size_t>(height) / 2;
  // The half image starts at an even address; with its work space it needs less than 3 bytes a pixel.
  uint8_t* start = buffer + reinterpret_cast<std::uintptr_t>(buffer) % alignof(uint16_t);
  auto* half = reinterpret_cast<uint16_t*>(start);
  uint8_t* work = start + half_width * half_height * sizeof *half;
  kernels().downsample(depth, stride, half, half_width, half_height);
  kernels().full({half, work, half_width, half_height, invalid_value}, SpeckleThreshold::fixed(max_diff),
                 SpeckleLimit::fixed(max_size));
  kernels().upsample(depth, stride, half, half_width, half_height, max_diff);
}
