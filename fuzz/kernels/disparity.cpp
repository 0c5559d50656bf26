// Depth tables of one and two cameras, and conversion of plain and packed codes by loading and by computing.
#include <cmath>

#include "filters/depth_converter.h"
#include "images.h"
#include "levels.h"

namespace filterprocessor::fuzz {

namespace {

/// One of the usual values, a small one or any bits of a float.
double any_of(FuzzInput& input, std::initializer_list<double> usual) {
  switch (input.number<std::uint8_t>() % 8) {
    case 1:
      return double{input.number<float>()};
    case 2:
      return input.integer(-4096, 4096) * 0.125;
    default:
      return input.pick(usual);
  }
}

double any_scale(FuzzInput& input) {
  return std::ldexp(1.0, input.one_in(8) ? input.integer(-10, 247) : input.integer(-2, 8));
}

DepthLimits any_limits(FuzzInput& input) {
  const double min = input.pick({0.0, 100.0, input.integer(0, 65535) * 0.25});
  return {min, input.pick({10000.0, 65535.0, 131070.0, input.integer(0, 65535) * 0.25}),
          input.pick({65536.0, 4096.0})};
}

StereoRule any_stereo(FuzzInput& input) {
  return {.layout = input.flag() ? CodeLayout::inverted : CodeLayout::linear,
          .scale = any_scale(input),
          .focal_baseline = any_of(input, {29680, 29680.4, 1e6, 10, -3000, 0}),
          .unit = any_of(input, {1, 0.5, 10, 0.001}),
          .disparity_offset = any_of(input, {0, 0.37, -5, 300}),
          .metadata_offset = any_of(input, {0, 8, -8}),
          .min_disparity = any_of(input, {0, 64, 96.5}),
          .disparity_end = input.pick({256.0, 1024.0}),
          .invalid_disparity = any_of(input, {0, 20, -1, 255}),
          .limits = any_limits(input)};
}

MonoRule any_mono(FuzzInput& input) {
  return {.layout = input.pick({CodeLayout::linear, CodeLayout::inverted, CodeLayout::signed_14_bit}),
          .scale = any_scale(input),
          .numerator = any_of(input, {1000, 1000.3, 500, -1000, 0}),
          .slope = any_of(input, {1000.0 / 29680, 0.02, -0.02, 0}),
          .disparity_offset = any_of(input, {0, -29.68, 0.25}),
          .limits = any_limits(input)};
}

/// A rule of either kind.
struct AnyRule {
  explicit AnyRule(FuzzInput& input) : two_cameras(input.flag()) {
    if (two_cameras) {
      stereo = any_stereo(input);
    } else {
      mono = any_mono(input);
    }
  }

  bool two_cameras;
  StereoRule stereo = {};
  MonoRule mono = {};
};

/// Mostly that of codes of some bits.
std::size_t any_table_size(FuzzInput& input) {
  return static_cast<std::size_t>(
      input.pick({4096, 65536, 1 << input.integer(0, 16), input.integer(1, 65536)}));
}

void build(FuzzInput& input) {
  const AnyRule rule(input);
  const Pixels empty(any_table_size(input));
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* table = buffers.copy(empty);
    if (rule.two_cameras) {
      kernels.depth_table.stereo(rule.stereo, table, empty.size());
    } else {
      kernels.depth_table.mono(rule.mono, table, empty.size());
    }
  });
}

void convert(FuzzInput& input) {
  const AnyRule rule(input);
  const std::size_t size = any_table_size(input);
  const bool packed = input.flag();
  const bool clear_first = input.one_in(4);
  const int uses = input.pick({1, 3});  // the second finds out whether the table can be computed
  const Sides sides = any_sides(input);
  const Pixels codes = any_pixels(input, sides);
  const Pixels unwritten(codes.size(), 0xa5a5);
  compare_levels(input, [&](const KernelSet& kernels, Buffers& buffers) {
    DepthConverter converter = rule.two_cameras ? DepthConverter(rule.stereo, size, kernels)
                                                : DepthConverter(rule.mono, size, kernels);
    if (clear_first) converter = converter.with_first_entry_cleared();
    for (int use = 0; use < uses; ++use) {
      const std::uint16_t* source = buffers.copy(codes);
      std::uint16_t* target = buffers.copy(unwritten);
      if (packed) {
        converter.convert_packed(source, target, codes.size());
      } else {
        converter.convert(source, target, codes.size());
      }
    }
  });
}

}  // namespace

void run_input(FuzzInput& input) { input.one_in(3) ? build(input) : convert(input); }

}  // namespace filterprocessor::fuzz
