#include "cases/kernel_cases.h"

#include <limits>

namespace filterprocessor {

namespace {

/// Mostly within an image, at times anything.
std::int32_t any_length(Source& source, std::size_t side) {
  using Length = std::numeric_limits<std::int32_t>;
  if (!source.one_in(10))
    return source.integer(-2, source.pick({9, 20, 100, static_cast<int>(side) + 3}));
  return source.pick({source.number<std::int32_t>(), 65536, Length::min(), Length::min() + 1,
                      Length::max() - 1, Length::max()});
}

/// Bands are added or removed; the target has at most `most` pixels, and none is made 1.
ResizeAxis any_axis(Source& source, std::size_t size, float scale, std::int32_t most) {
  const auto any_band = [&] {
    return source.pick({0, source.integer(-20, 20), source.integer(-2000, 2000)});
  };
  const std::int32_t before = any_band();
  const std::int32_t extent = target_extent(static_cast<float>(size), scale, before, any_band());
  return resize_axis(static_cast<std::int32_t>(size), std::clamp(extent, 1, most), scale, before);
}

/// A part of what is allowed, a number around it or any number at all.
float any_part(Source& source) {
  switch (source.integer(0, 7)) {
    case 1:
      return source.pick({source.number<float>(), 1e-40f, 1.0000001f, 4e9f});
    case 2:
    case 3:
      return static_cast<float>(source.integer(-4000, 4000)) / 1000;
    default:
      return static_cast<float>(source.integer(0, 1000)) / 1000;
  }
}

std::int32_t any_amount(Source& source) {
  return source.one_in(3) ? source.number<std::int32_t>() >> source.integer(0, 24)
                          : source.integer(-2, 61);
}

KernelCase removal(Source& source, SpeckleKernels::Remove* SpeckleKernels::*form, const Sides& sides) {
  const auto invalid = source.pick<std::uint16_t>({0, 0, 8192, 65532, 65535});
  const auto table_size = source.pick({std::size_t{7}, source.size(0, 33), source.size(0, 255)});
  const Pixels table = any_table(source, table_size);
  const auto shift =
      static_cast<std::uint8_t>(source.pick({9, source.integer(0, 15), source.integer(0, 255)}));
  const bool by_table = source.flag();
  const bool null_table = source.one_in(64);
  const std::int32_t max_diff = any_amount(source);

  const bool by_map = source.one_in(3);
  const std::size_t cols = 1 + source.size(0, 39) % sides.width;
  const std::size_t rows = 1 + source.size(0, 39) % sides.height;
  const Pixels map = by_map ? any_table(source, cols * rows) : Pixels{};
  const std::int32_t max_size = any_amount(source);

  const Pixels pixels = any_pixels(source, sides, invalid);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    const SpeckleImage image{buffers.copy(pixels), buffers.work_space(9 * sides.area()), sides.width,
                             sides.height, invalid};
    const std::uint16_t* entries = null_table ? nullptr : buffers.copy(table);
    const auto threshold =
        by_table ? SpeckleThreshold::from_table(entries, shift, static_cast<std::uint8_t>(table.size()))
                 : SpeckleThreshold::fixed(max_diff);
    const auto limit =
        by_map ? SpeckleLimit{0, buffers.copy(map), cols, rows} : SpeckleLimit::fixed(max_size);
    (kernels.speckle.*form)(image, threshold, limit);
  };
}

KernelCase resampling(Source& source, const Sides& sides, bool up) {
  const Sides half{sides.width / 2, sides.height / 2};
  const Pixels full_pixels = any_pixels(source, sides);
  const Pixels half_pixels = any_pixels(source, half);
  const std::int32_t max_diff = any_amount(source);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* full = buffers.copy(full_pixels);
    std::uint16_t* small = buffers.copy(half_pixels);
    if (up) {
      kernels.speckle.upsample(full, sides.width, small, half.width, half.height, max_diff);
    } else {
      kernels.speckle.downsample(full, sides.width, small, half.width, half.height);
    }
  };
}

}  // namespace

std::string difference(const KernelCase& run, const KernelSet& level, std::uint32_t placements) {
  Buffers expected(placements), actual(placements);
  run(kernel_sets().front(), expected);
  run(level, actual);
  const std::string found = actual.difference_from(expected);
  return found.empty() ? found : level.level + (" " + found);
}

KernelCase correction_case(Source& source) {
  using Scale = std::numeric_limits<float>;
  const float scale = source.pick({1.0f, 0.1f, 0.125f, 10.0f, -0.3f, 0.0f, 1e-9f, Scale::infinity(),
                                   -Scale::infinity(), Scale::quiet_NaN(), source.number<float>()});
  const Pixels pixels = any_pixels(source, any_sides(source));
  // The depth of some pixel, or any number.
  const std::uint16_t pixel = pixels[source.number<std::uint32_t>() % pixels.size()];
  const std::int32_t depth =
      source.one_in(4) ? source.number<std::int32_t>() : plain::depth_of(pixel, scale);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    kernels.correction.clear_depth(buffers.copy(pixels), pixels.size(), scale, depth);
  };
}

KernelCase hole_filling_case(Source& source) {
  const auto rule =
      source.pick({&HoleFillingKernels::top, &HoleFillingKernels::smaller, &HoleFillingKernels::larger});
  const Sides sides = any_sides(source);
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    (kernels.hole_filling.*rule)(buffers.copy(pixels), sides.width, sides.height);
  };
}

AnyMargins any_margins(Source& source, const Sides& sides) {
  const auto [width, height] = sides;
  AnyMargins any;
  any.rule = {.left = any_length(source, width),
              .right = any_length(source, width),
              .limit_x = any_length(source, width)};
  if (!source.one_in(4)) {
    any.rule.margin_y = any_length(source, height);
    any.rule.limit_y = any_length(source, height);
  }
  any.chamfer.resize(source.one_in(4) ? 2 * sides.height : 0);
  for (std::uint16_t& margin : any.chamfer) {
    margin =
        static_cast<std::uint16_t>(source.one_in(8) ? source.integer(0, 65535) : source.integer(0, 63));
  }
  return any;
}

KernelCase margin_case(Source& source) {
  const Sides sides = any_sides(source);
  const AnyMargins margins = any_margins(source, sides);
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    MarginRule rule = margins.rule;
    if (!margins.chamfer.empty()) rule.chamfer = buffers.copy(margins.chamfer);
    kernels.margin.clear(buffers.copy(pixels), static_cast<std::int32_t>(sides.width),
                         static_cast<std::int32_t>(sides.height), rule);
  };
}

KernelCase resize_case(Source& source) {
  const Sides sides = any_sides(source);
  const float scale =
      source.pick({1.0f, 2.0f, 0.5f, static_cast<float>(source.integer(100, 4000)) * 0.001f,
                   static_cast<float>(source.integer(1, 50000)) * 0.001f});
  constexpr std::int32_t kMostPixels = 1 << 16;
  const ResizeAxis columns = any_axis(source, sides.width, scale, kMostPixels);
  const ResizeAxis rows =
      any_axis(source, sides.height, scale, kMostPixels / static_cast<std::int32_t>(columns.target_size));
  const Pixels pixels = any_pixels(source, sides);
  const Pixels target(columns.target_size * rows.target_size, 0xdead);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    const std::uint16_t* from = buffers.copy(pixels);
    kernels.resize.resize(from, columns, rows, buffers.copy(target));
  };
}

KernelCase spatial_case(Source& source) {
  const auto passes =
      source.pick({&SpatialKernels::both, &SpatialKernels::horizontal, &SpatialKernels::vertical});
  const Sides sides = any_sides(source);
  const auto table_size =
      source.pick({std::size_t{7}, std::size_t{1}, source.size(0, 33), source.size(0, 255)});
  const Pixels table = any_table(source, table_size);
  const bool null_table = source.one_in(64);
  const auto shift =
      static_cast<unsigned>(source.pick({9, source.integer(0, 15), source.integer(0, 255)}));
  // There are ways of their own for a half and for weights whose blends stay clear of ties.
  const float alpha = source.pick({0.5f, static_cast<float>(source.integer(0, 100)) * 0.01f, 1e-40f,
                                   static_cast<float>(source.number<std::uint16_t>()) / 65535.0f,
                                   std::numeric_limits<float>::quiet_NaN()});
  const auto radius = static_cast<std::uint8_t>(source.integer(0, source.pick({3, 12, 255})));
  const Pixels pixels = any_pixels(source, sides);
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* image = buffers.copy(pixels);
    const std::uint16_t* entries = null_table ? nullptr : buffers.copy(table);
    (kernels.spatial.*passes)(image, sides.width, sides.height,
                              {{entries, static_cast<unsigned>(table.size()), shift}, alpha, radius});
  };
}

KernelCase speckle_case(Source& source) {
  const int kernel = source.integer(0, 9);
  const Sides sides = any_sides(source, kernel < 4 ? 1 : 2);
  if (kernel >= 8) return resampling(source, sides, kernel == 8);
  return removal(source, kernel < 4 ? &SpeckleKernels::full : &SpeckleKernels::pyramid, sides);
}

KernelCase temporal_case(Source& source) {
  const Sides sides = any_sides(source);
  const float diff_scale = any_part(source);
  const float weight = any_part(source);
  const bool own_history = source.one_in(16);
  const Pixels pixels = any_pixels(source, sides);
  Pixels before = any_pixels(source, sides);
  if (!source.one_in(4)) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      before[i] = static_cast<std::uint16_t>(pixels[i] + before[i] % 64 - 32);
    }
  }
  return [=](const KernelSet& kernels, Buffers& buffers) {
    std::uint16_t* depth = buffers.copy(pixels);
    std::uint16_t* history = own_history ? depth : buffers.copy(before);
    kernels.temporal.smooth(depth, history, pixels.size(), diff_scale, weight);
  };
}

}  // namespace filterprocessor
