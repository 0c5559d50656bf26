// The exported kernels at the level that the library chooses, with arguments in and out of their ranges.
#include <limits>
#include <utility>

#include "filterprocessor/hole_filling.h"
#include "filterprocessor/margin.h"
#include "filterprocessor/spatial.h"
#include "filterprocessor/speckle.h"
#include "filterprocessor/temporal.h"
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

struct Size {
  std::int32_t width, height;
};

/// One with an image behind it, that of a form of its own now and then, or one that no function takes.
Size any_size(FuzzInput& input) {
  const Sides sides = any_sides(input);
  Size size{static_cast<std::int32_t>(sides.width), static_cast<std::int32_t>(sides.height)};
  if (input.one_in(4)) {
    size = {input.pick({1280, 640, 320, 160, 424, 5}), input.integer(1, 12)};
    if (input.flag()) std::swap(size.width, size.height);
  }
  if (input.one_in(8)) size.width = input.pick({0, -1, 32768, 65536, kSmallest, kLargest});
  if (input.one_in(8)) size.height = input.pick({0, -1, 32768, 65536, kSmallest, kLargest});
  return size;
}

bool has_image(const Size& size) {
  return size.width > 0 && size.height > 0 && size.width < 32768 && size.height < 32768;
}

/// As many pixels as there are; none, not even readable ones, for a size that no function takes.
Pixels pixels_of(FuzzInput& input, const Size& size) {
  if (!has_image(size)) return {};
  return any_pixels(input, {static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height)});
}

std::int32_t any_amount(FuzzInput& input) {
  return input.one_in(4) ? input.number<std::int32_t>() : input.integer(-2, 200);
}

void call_speckle(FuzzInput& input, Buffers& buffers) {
  const Size size = any_size(input);
  const auto [width, height] = size;
  const Pixels pixels = pixels_of(input, size);
  std::uint16_t* depth = buffers.copy(pixels);
  unsigned char* work = buffers.work_space(9 * pixels.size());
  const std::int32_t max_diff = any_amount(input);
  const std::int32_t max_size = any_amount(input);
  const auto invalid = input.pick<std::uint16_t>({0, 8192, 65535});
  const auto shift = input.pick<std::uint8_t>({9, 13, 0, 15, 16, 255});
  const auto lut_size = input.pick<std::uint8_t>({0, 7, 1, 255});
  std::uint16_t* lut = buffers.copy(any_table(input, lut_size));
  const std::int32_t cols = input.pick({4, 1, 0, -1, input.integer(1, 40), width, kLargest});
  const std::int32_t rows = input.pick({4, 1, 0, -1, input.integer(1, 40), height, kLargest});
  const bool fits = cols > 0 && rows > 0 && cols <= width && rows <= height && has_image(size);
  Pixels limits(fits ? static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows) : 0, 30);
  if (!limits.empty()) limits.back() = 3;
  std::uint16_t* map = input.one_in(16) ? nullptr : buffers.copy(limits);

  switch (input.integer(0, 6)) {
    case 0:
      return require(depth_api_softfilter(work, depth, map, width, height, lut, shift, lut_size, max_diff,
                                          max_size, cols, rows, invalid, input.flag()) == 0,
                     "speckle removal says success");
    case 1:
      return softfilterPyramid(work, depth, width, height, max_diff, max_size, invalid);
    case 2:
      return softfilterPyramid_lut(work, depth, width, height, lut, shift, lut_size, max_size, invalid);
    case 3:
      return filterSpecklePyramid(work, depth, map, width, height, max_diff, cols, rows, invalid);
    case 4:
      return filterSpecklePyramid_lut(work, depth, map, width, height, lut, shift, lut_size, cols, rows,
                                      invalid);
    case 5:
      return Softfilter_new(work, depth, width, height, max_diff, max_size, invalid);
    default:
      return softfilterOpt(work, depth, width, height, max_diff, max_size, invalid);
  }
}

void call_resampling(FuzzInput& input, Buffers& buffers) {
  const Size size = any_size(input);
  const Pixels pixels = pixels_of(input, size);
  if (input.flag()) {
    const Pixels full(4 * pixels.size(), 700);
    upSample_new(buffers.copy(full), buffers.copy(pixels), size.width, size.height, any_amount(input));
  } else {
    const auto half = [](std::int32_t side) { return static_cast<std::size_t>(side / 2); };
    const Pixels small(has_image(size) ? half(size.width) * half(size.height) : 0);
    downSample(buffers.copy(pixels), buffers.copy(small), size.width, size.height);
  }
}

void call_spatial(FuzzInput& input, Buffers& buffers) {
  const Sides sides = any_sides(input);
  const auto width = static_cast<std::uint16_t>(sides.width);
  const auto height = static_cast<std::uint16_t>(sides.height);
  std::uint16_t* data = buffers.copy(any_pixels(input, sides));
  if (input.one_in(32)) data = nullptr;
  const auto lut_size = input.pick<std::uint8_t>({7, 0, 1, 255});
  const std::uint16_t* lut = buffers.copy(any_table(input, lut_size));
  const auto shift = input.pick<std::uint8_t>({9, 13, 0, 15, 16, 255});
  const std::int32_t magnitude = input.pick({1, 2, 0, -1, kSmallest});
  const auto radius = input.number<std::uint8_t>();
  const auto horizontal = input.pick<std::uint8_t>({1, 0, 2, 255});
  const auto vertical = input.pick<std::uint8_t>({1, 0, 2, 255});
  const float alpha = input.pick({0.5f, 0.3f, 1.0f, input.number<float>()});
  const float disp_diff = input.pick({160.0f, input.number<float>()});

  const bool valid =
      data != nullptr && magnitude >= 1 && (horizontal | vertical) == 1 && !(alpha < 0) && !(alpha > 1);
  int status = 0;
  switch (input.integer(0, 2)) {
    case 0:
      status = depth_api_spatial_filter(data, width, height, lut, shift, lut_size, magnitude, radius,
                                        horizontal, vertical, alpha, disp_diff);
      break;
    case 1:
      status = depth_api_spatial_filter_origin(data, width, height, magnitude, radius, horizontal,
                                               vertical, alpha, disp_diff);
      break;
    default:
      status = depth_api_spatial_filter_origin_lut(data, width, height, lut, shift, lut_size, magnitude,
                                                   radius, horizontal, vertical, alpha);
      break;
  }
  require(status == (valid ? 0 : -1), "smoothing says whether it is done");
}

/// A side as it is or one below the image's.
std::int32_t any_side(FuzzInput& input, std::size_t side) {
  return input.one_in(8) ? input.pick({0, -1, kSmallest}) : static_cast<std::int32_t>(side);
}

void call_temporal(FuzzInput& input, Buffers& buffers) {
  const Sides sides = any_sides(input);
  std::uint16_t* depth = buffers.copy(any_pixels(input, sides));
  std::uint16_t* history =
      input.pick<std::uint16_t*>({buffers.copy(any_pixels(input, sides)), depth, nullptr});
  require(depth_api_temporal_filter(depth, any_side(input, sides.width), any_side(input, sides.height),
                                    history, input.number<float>(), input.number<float>()) == 0,
          "temporal smoothing says success");
}

void call_hole_filling(FuzzInput& input, Buffers& buffers) {
  const Sides sides = any_sides(input);
  const std::int32_t mode = input.pick({0, 1, 2, 3, -1});
  const auto height = input.one_in(8) ? 0 : static_cast<std::uint32_t>(sides.height);
  std::uint16_t* depth = buffers.copy(any_pixels(input, sides));
  require(depth_api_hole_filling_filter(depth, any_side(input, sides.width), height, mode) ==
              (mode >= 0 && mode <= 2 ? 0 : -1),
          "hole filling says whether it is done");
}

void call_margin(FuzzInput& input, Buffers& buffers) {
  const Sides sides = any_sides(input);
  std::uint16_t* data = input.one_in(32) ? nullptr : buffers.copy(any_pixels(input, sides));
  const std::int32_t width = any_side(input, sides.width);
  const std::int32_t height = any_side(input, sides.height);
  std::int32_t n[5];
  for (std::int32_t& amount : n) amount = any_amount(input);
  std::vector<std::uint16_t> table(2 * sides.height, 0xdead);
  std::uint16_t* chamfer = buffers.copy(table);
  const bool null_table = input.one_in(32);
  int status = 0;
  int expected = data == nullptr ? -1 : 0;
  const auto fails = [&](bool failed, int with) {
    if (expected == 0 && failed) expected = with;
  };
  switch (input.integer(0, 3)) {
    case 0:
      fails(n[0] > n[1], -2);
      status = depth_api_horizontal_margin_filter(data, width, height, n[0], n[1]);
      break;
    case 1:
      fails(n[0] > n[2] || n[1] > n[3], -2);
      status = depth_api_margin_filter(data, width, height, n[0], n[1], n[2], n[3]);
      break;
    case 2:
      fails(n[0] > n[3] || n[1] > n[3] || n[2] > n[4], -2);
      fails(n[0] < n[1], -3);
      status = depth_api_margin_filter_asym(data, width, height, n[0], n[1], n[2], n[3], n[4]);
      break;
    default:
      fails(n[0] > n[2], -2);
      fails(null_table, -3);
      require(
          depth_api_init_margin_chamfer(null_table ? nullptr : chamfer, width, height, n[3], n[4],
                                        any_amount(input), any_amount(input)) == (null_table ? -1 : 0),
          "a chamfer table is made");
      status = depth_api_margin_filter_with_chamfer(data, width, height, n[0], n[1], n[2],
                                                    null_table ? nullptr : chamfer);
      break;
  }
  require(status == expected, "margin clearing says whether it is done");
}

}  // namespace

void run_input(FuzzInput& input) {
  const auto call = input.pick({call_speckle, call_speckle, call_resampling, call_margin, call_spatial,
                                call_temporal, call_hole_filling});
  Buffers buffers(input.number<std::uint32_t>());
  call(input, buffers);
}

}  // namespace filterprocessor::fuzz
