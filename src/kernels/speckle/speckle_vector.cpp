#include <initializer_list>

#include "kernels/speckle/speckle.h"
#include "kernels/speckle/speckle_regions.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

constexpr std::size_t kLanes = U16::lanes;

/// Calls `run` with the thresholds in the form that suits them. Those below 0 are not for it.
template <typename Run>
void with_threshold(const SpeckleThreshold& threshold, Run run) {
  if (!threshold.by_table) return run(UniformThreshold(threshold.max_diff));
  const TableThreshold table(threshold);
  if (threshold.size <= U16::table_entries) return run(ShortTableThreshold(table));
  run(LongTableThreshold(table));
}

/// The largest limit that a region is compared with.
std::int32_t largest(const SpeckleLimit& limit) {
  constexpr std::int32_t most = 32767 * 32767;
  if (limit.map != nullptr) return 65535;
  return limit.max_size < most ? limit.max_size : most;
}

/// Visits the runs to remove. `limit_at` gives the limit for a region's first pixel.
template <typename Regions, typename LimitAt, typename Visit>
void remove(Regions& regions, const SpeckleLimit& limit, LimitAt limit_at, Visit visit) {
  regions.visit_removed(
      largest(limit), limit.map != nullptr,
      [&](std::size_t first, std::int32_t size) { return size <= limit_at(first); }, visit);
}

/// Prepares the lattice of odd rows and columns: copies it row by row into a small image and smooths the
/// blocks, as if all regions were kept. Smoothing needs no regions, changes no lattice pixel, and where a
/// region is removed afterwards its blocks are set whole.
template <typename Threshold>
class Lattice {
 public:
  Lattice(const SpeckleImage& image, std::uint16_t* lattice, const Threshold& threshold)
      : image_(image), lattice_(lattice), threshold_(threshold) {}

  std::size_t width() const { return image_.width / 2; }
  std::size_t height() const { return image_.height / 2; }

  /// Makes sure that the first `pixels` pixels of the lattice are there.
  void prepare(std::size_t pixels) {
    while (done_ < height() && done_ * width() < pixels) prepare_row(done_++);
  }

 private:
  void prepare_row(std::size_t row) {
    const Threshold threshold = threshold_;  // copies, which stores to the image can't change
    std::uint16_t* upper = image_.pixels + 2 * row * image_.width;
    std::uint16_t* lower = upper + image_.width;
    std::uint16_t* to = lattice_ + row * width();
    const U16 invalid = U16::splat(image_.invalid);
    if (width() < kLanes) {
      std::uint16_t copy[2][2 * kLanes] = {};
      for (std::size_t i = 0; i < 2 * width(); ++i) copy[0][i] = upper[i], copy[1][i] = lower[i];
      smooth_blocks(copy[0], copy[1], threshold, invalid).store_first(to, width());
      for (std::size_t i = 0; i < 2 * width(); ++i) upper[i] = copy[0][i], lower[i] = copy[1][i];
      return;
    }
    // The last vector may begin among blocks that are done already; they stay as they are.
    const std::size_t last = width() - kLanes;
    const std::size_t next_pair = 2 * image_.width;
    for (std::size_t col = 0; col < last + kLanes; col += kLanes) {
      const std::size_t at = smaller(col, last);
      for (const std::uint16_t* pair : {upper, lower}) {
        for (std::size_t i = 0; i < 2 * kLanes; i += kCacheLine) prefetch(pair + 2 * at + i, next_pair);
      }
      smooth_blocks(upper + 2 * at, lower + 2 * at, threshold, invalid).store(to + at);
    }
  }

  /// Smooths a vector of blocks. @return their lattice pixels
  [[gnu::always_inline]] static U16 smooth_blocks(std::uint16_t* upper, std::uint16_t* lower,
                                                  const Threshold& threshold, U16 invalid) {
    const U16 first = U16::load(lower);
    const U16 second = U16::load(lower + kLanes);
    smooth(upper, lower, first, threshold, invalid);
    smooth(upper + kLanes, lower + kLanes, second, threshold, invalid);
    return U16::odd_lanes(first, second);
  }

  /// Smooths the blocks whose lower row, which holds the lattice pixels, has been read.
  [[gnu::always_inline]] static void smooth(std::uint16_t* upper, std::uint16_t* lower, U16 lower_values,
                                            const Threshold& threshold, U16 invalid) {
    const U16 upper_values = U16::load(upper);
    const U16 centers = lower_values.odd_doubled();
    // Around an invalid center everything that differs becomes invalid.
    const Reach reach(centers, select(equal(centers, invalid), U16::zero(), threshold.of(centers)));
    centers.store_where(~reach.holds(upper_values), upper, upper_values);
    centers.store_where(~reach.holds(lower_values), lower, lower_values);
  }

  const SpeckleImage& image_;
  std::uint16_t* lattice_;
  const Threshold& threshold_;
  std::size_t done_ = 0;
};

/// Carries a half image back to a vector's worth of blocks that are in neither the first nor the last
/// half row.
void upsample_blocks(std::uint16_t* upper, std::uint16_t* lower, const std::uint16_t* half,
                     std::size_t half_width, const UniformThreshold& threshold) {
  const U16 zero = U16::zero();
  const U16 s = U16::load(half);
  const U16 above = U16::load(half - half_width);
  const U16 left = U16::load(half - 1);
  // Pairs of pixels: the first has a neighbour in the half image to its left, for the second s stands in.
  const auto settle = [&](std::size_t at, U16 pair_s, U16 pair_above, U16 pair_left, U16 pair_zero_s) {
    const U16 upper_values = U16::load(upper + at);
    const Reach upper_reach(upper_values, threshold.of(upper_values));
    const Mask16 keep_upper =
        upper_reach.holds(pair_s) | upper_reach.holds(pair_above) | upper_reach.holds(pair_left);
    zero.store_where(~keep_upper, upper + at, upper_values);
    const U16 lower_values = U16::load(lower + at);
    const Reach lower_reach(lower_values, threshold.of(lower_values));
    const Mask16 keep_lower =
        lower_reach.holds(pair_s) | lower_reach.holds(pair_left) | lower_values.is_zero();
    pair_zero_s.store_where(~keep_lower, lower + at, lower_values);
  };
  settle(0, interleave_low(s, s), interleave_low(above, above), interleave_low(left, s),
         interleave_low(zero, s));
  settle(kLanes, interleave_high(s, s), interleave_high(above, above), interleave_high(left, s),
         interleave_high(zero, s));
}

void speckle_full(const SpeckleImage& image, const SpeckleThreshold& threshold,
                  const SpeckleLimit& limit) {
  if (limit.map == nullptr && limit.max_size < 1) return;
  if (!threshold.by_table && threshold.max_diff < 0) return plain::speckle.full(image, threshold, limit);
  const std::size_t count = image.width * image.height;
  with_threshold(threshold, [&](const auto& thresholds) {
    Regions regions(image.pixels, image.width, image.height, image.invalid, thresholds);
    if (!regions.label(largest(limit), WorkSpace(image.work, 9 * count), [](std::size_t) {})) {
      return plain::speckle.full(image, threshold, limit);
    }
    const RegionLimit limit_at(limit, image.width, image.height);
    const auto place = [&](std::size_t pixel) {
      return limit_at(pixel / image.width, pixel % image.width);
    };
    const U16 invalid = U16::splat(image.invalid);
    remove(regions, limit, place, [&](std::size_t pixel, std::size_t length) {
      set_run(image.pixels + pixel, length, invalid);
    });
  });
}

void speckle_pyramid(const SpeckleImage& image, const SpeckleThreshold& threshold,
                     const SpeckleLimit& limit) {
  if (!threshold.by_table && threshold.max_diff < 0)
    return plain::speckle.pyramid(image, threshold, limit);
  const std::size_t width = image.width / 2;
  const std::size_t height = image.height / 2;
  const std::size_t end = image.width * image.height;
  WorkSpace work(image.work, 9 * end);
  std::uint16_t* const pixels = work.take<std::uint16_t>(width * height);
  with_threshold(threshold, [&](const auto& thresholds) {
    Lattice lattice(image, pixels, thresholds);
    if (limit.map == nullptr && limit.max_size < 1) return lattice.prepare(width * height);

    Regions regions(pixels, width, height, image.invalid, thresholds);
    const bool labelled = regions.label(largest(limit), work, [&](std::size_t batch) {
      lattice.prepare((batch + 1) * kBatch + width + 1);
    });
    // What has been smoothed already is smoothed the same way again.
    if (!labelled) return plain::speckle.pyramid(image, threshold, limit);
    const RegionLimit limit_at(limit, image.width, image.height);
    const auto place = [&](std::size_t pixel) {
      return limit_at(2 * (pixel / width) + 1, 2 * (pixel % width) + 1);
    };
    const U16 invalid = U16::splat(image.invalid);
    std::size_t row = 0;
    remove(regions, limit, place, [&](std::size_t pixel, std::size_t length) {
      while (pixel >= (row + 1) * width) ++row;
      for (std::size_t col = pixel - row * width;; ++row, col = 0) {
        const std::size_t here = length < width - col ? length : width - col;
        std::uint16_t* const upper = image.pixels + 2 * row * image.width + 2 * col;
        set_run(upper, 2 * here, invalid);
        set_run(upper + image.width, 2 * here, invalid);
        if (here == length) break;
        length -= here;
      }
    });
  });
}

void speckle_downsample(const std::uint16_t* full, std::size_t stride, std::uint16_t* half,
                        std::size_t half_width, std::size_t half_height) {
  for (std::size_t row = 0; row < half_height; ++row) {
    const std::uint16_t* from = full + (2 * row + 1) * stride;
    std::uint16_t* to = half + row * half_width;
    std::size_t col = 0;
    for (; col + kLanes <= half_width; col += kLanes) {
      U16::odd_lanes(U16::load(from + 2 * col), U16::load(from + 2 * col + kLanes)).store(to + col);
    }
    for (; col < half_width; ++col) to[col] = from[2 * col + 1];
  }
}

void speckle_upsample(std::uint16_t* full, std::size_t stride, const std::uint16_t* half,
                      std::size_t half_width, std::size_t half_height, std::int32_t max_diff) {
  // The edge rows and what is left of the others are few.
  if (max_diff < 0 || half_width <= kLanes || half_height < 3) {
    return plain::speckle.upsample(full, stride, half, half_width, half_height, max_diff);
  }
  const std::size_t last = (half_height - 1) * half_width;
  plain::speckle.upsample(full, stride, half, half_width, 1, max_diff);
  plain::speckle.upsample(full + 2 * (half_height - 1) * stride, stride, half + last, half_width, 1,
                          max_diff);
  const UniformThreshold threshold(max_diff);
  for (std::size_t row = 1; row + 1 < half_height; ++row) {
    // Repeating a block changes nothing: what was set to 0 stays, and the others are near what they were
    // near.
    for (std::size_t col = 1; col < half_width; col += kLanes) {
      const std::size_t at = col < half_width - kLanes ? col : half_width - kLanes;
      std::uint16_t* const to = full + 2 * row * stride + 2 * at;
      upsample_blocks(to, to + stride, half + row * half_width + at, half_width, threshold);
    }
  }
}

}  // namespace

extern const SpeckleKernels speckle = {speckle_full, speckle_pyramid, speckle_downsample,
                                       speckle_upsample};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
