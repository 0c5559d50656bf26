#include <cmath>
#include <limits>

#include "cases/kernel_cases.h"
#include "filters/depth_converter.h"

namespace filterprocessor {

namespace {

/// One of the usual values, a small one or an extreme one.
double any_of(Source& source, std::initializer_list<double> usual) {
  using Number = std::numeric_limits<double>;
  switch (source.number<std::uint8_t>() % 8) {
    case 1:
      return source.pick(
          {double{source.number<float>()}, Number::quiet_NaN(), Number::infinity(), 1e300});
    case 2:
      return source.integer(-4096, 4096) * 0.125;
    default:
      return source.pick(usual);
  }
}

double any_scale(Source& source) {
  return std::ldexp(1.0, source.one_in(8) ? source.integer(-10, 247) : source.integer(-2, 8));
}

DepthLimits any_limits(Source& source) {
  const double min = source.pick({0.0, 100.0, source.integer(0, 65535) * 0.25});
  return {min, source.pick({10000.0, 65535.0, 131070.0, source.integer(0, 65535) * 0.25}),
          source.pick({65536.0, 4096.0})};
}

StereoRule any_stereo(Source& source) {
  return {.layout = source.flag() ? CodeLayout::inverted : CodeLayout::linear,
          .scale = any_scale(source),
          .focal_baseline = any_of(source, {29680, 29680.4, 1e6, 10, -3000, 0}),
          .unit = any_of(source, {1, 0.5, 10, 0.001}),
          .disparity_offset = any_of(source, {0, 0.37, -5, 300}),
          .metadata_offset = any_of(source, {0, 8, -8}),
          .min_disparity = any_of(source, {0, 64, 96.5}),
          .disparity_end = source.pick({256.0, 1024.0}),
          .invalid_disparity = any_of(source, {0, 20, 20.0005, -1, 255}),
          .limits = any_limits(source)};
}

MonoRule any_mono(Source& source) {
  return {.layout = source.pick({CodeLayout::linear, CodeLayout::inverted, CodeLayout::signed_14_bit}),
          .scale = any_scale(source),
          .numerator = any_of(source, {1000, 1000.3, 500, -1000, 0}),
          .slope = any_of(source, {1000.0 / 29680, 0.02, -0.02, 0}),
          .disparity_offset = any_of(source, {0, -29.68, 0.25}),
          .limits = any_limits(source)};
}

/// Mostly that of codes of some bits.
std::size_t any_table_size(Source& source) {
  return source.pick({std::size_t{4096}, kMaxDepthTable, std::size_t{1} << source.integer(0, 16),
                      source.size(1, 65536)});
}

KernelCase building(Source& source) {
  const DepthRule rule = any_depth_rule(source);
  const Pixels empty(any_table_size(source));
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* table = buffers.copy(empty);
    if (const auto* stereo = std::get_if<StereoRule>(&rule)) {
      kernels.depth_table.stereo(*stereo, table, empty.size());
    } else {
      kernels.depth_table.mono(std::get<MonoRule>(rule), table, empty.size());
    }
  };
}

KernelCase conversion(Source& source) {
  const DepthRule rule = any_depth_rule(source);
  const std::size_t size = any_table_size(source);
  const bool packed = source.flag();
  const bool clear_first = source.one_in(4);
  const int uses = source.pick({1, 3});  // the second finds out whether the table can be computed
  const Pixels codes = any_pixels(source, any_sides(source));
  const Pixels unwritten(codes.size(), 0xa5a5);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    auto converter = std::visit([&](const auto& r) { return DepthConverter(r, size, kernels); }, rule);
    if (clear_first) converter = converter.with_first_entry_cleared();
    for (int use = 0; use < uses; ++use) {
      const std::uint16_t* from = buffers.copy(codes);
      std::uint16_t* to = buffers.copy(unwritten);
      packed ? converter.convert_packed(from, to, codes.size())
             : converter.convert(from, to, codes.size());
    }
  };
}

}  // namespace

DepthRule any_depth_rule(Source& source) {
  StereoRule stereo = any_stereo(source);
  MonoRule mono = any_mono(source);
  if (source.one_in(8)) {
    // Depths that meet the limits exactly: 32768 over whole numbers.
    stereo.layout = mono.layout = CodeLayout::linear;
    stereo.focal_baseline = mono.numerator = 32768;
    stereo.scale = stereo.unit = mono.scale = mono.slope = 1;
    stereo.disparity_offset = stereo.metadata_offset = mono.disparity_offset = 0;
    stereo.limits = mono.limits = {128, source.pick({8192.0, 65536.0}), source.pick({65536.0, 4096.0})};
  }
  if (source.flag()) return stereo;
  return mono;
}

KernelCase disparity_case(Source& source) {
  return source.one_in(3) ? building(source) : conversion(source);
}

}  // namespace filterprocessor
