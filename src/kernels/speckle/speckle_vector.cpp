#include "kernels/speckle/speckle_vector.h"

#include <initializer_list>

#include "kernels/speckle/speckle_plain.h"
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

/// Sets `count` pixels, at least one.
void fill(std::uint16_t* pixels, std::size_t count, U16 value) {
  for (; count > kLanes; count -= kLanes, pixels += kLanes) value.store(pixels);
  fill_first(value, pixels, count);
}

/// The largest limit that a region is compared with.
std::int32_t largest(const SpeckleLimit& limit) { return limit.map != nullptr ? 65535 : limit.max_size; }

/// Visits the runs to remove. `limit_at` gives the limit for a region's first pixel.
template <typename Regions, typename LimitAt, typename Visit>
void remove(Regions& regions, const SpeckleLimit& limit, LimitAt limit_at, Visit visit) {
  if (limit.map == nullptr) return regions.visit_runs_of_regions_up_to(limit.max_size, visit);
  regions.judge([&](std::size_t first, std::int32_t size) { return size <= limit_at(first); });
  regions.visit_runs_of_regions_up_to(1, visit);
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
    std::uint16_t* upper = image_.pixels + 2 * row * image_.width;
    std::uint16_t* lower = upper + image_.width;
    std::uint16_t* to = lattice_ + row * width();
    const U16 invalid = U16::splat(image_.invalid);
    std::size_t left = width();
    for (; left >= kLanes; left -= kLanes, upper += 2 * kLanes, lower += 2 * kLanes, to += kLanes) {
      const U16 first = smooth(upper, lower, U16::load(upper), U16::load(lower), invalid);
      const U16 second = smooth(upper + kLanes, lower + kLanes, U16::load(upper + kLanes),
                                U16::load(lower + kLanes), invalid);
      U16::odd_lanes(first, second).store(to);
    }
    if (left == 0) return;
    std::uint16_t tail[4][kLanes] = {};
    for (std::size_t i = 0; i < 2 * left; ++i) {
      tail[i / kLanes][i % kLanes] = upper[i];
      tail[2 + i / kLanes][i % kLanes] = lower[i];
    }
    const U16 first = smooth(tail[0], tail[2], U16::load(tail[0]), U16::load(tail[2]), invalid);
    const U16 second = smooth(tail[1], tail[3], U16::load(tail[1]), U16::load(tail[3]), invalid);
    U16::odd_lanes(first, second).store_first(to, left);
    for (std::size_t i = 0; i < 2 * left; ++i) {
      upper[i] = tail[i / kLanes][i % kLanes];
      lower[i] = tail[2 + i / kLanes][i % kLanes];
    }
  }

  /// Smooths a row of blocks. @return the lower row, which holds the lattice pixels
  U16 smooth(std::uint16_t* upper, std::uint16_t* lower, U16 upper_values, U16 lower_values,
             U16 invalid) const {
    const U16 centers = lower_values.odd_doubled();
    // Around an invalid center everything that differs becomes invalid.
    const Reach reach(centers, select(equal(centers, invalid), U16::zero(), threshold_.of(centers)));
    const Mask16 change_upper = ~reach.holds(upper_values);
    const Mask16 change_lower = ~reach.holds(lower_values);
    if ((change_upper | change_lower).any()) {
      centers.store_where(change_upper, upper, upper_values);
      centers.store_where(change_lower, lower, lower_values);
    }
    return lower_values;
  }

  const SpeckleImage& image_;
  std::uint16_t* lattice_;
  const Threshold& threshold_;
  std::size_t done_ = 0;
};

}  // namespace

void speckle_full(const SpeckleImage& image, const SpeckleThreshold& threshold,
                  const SpeckleLimit& limit) {
  if (limit.map == nullptr && limit.max_size < 1) return;
  if (!threshold.by_table && threshold.max_diff < 0) return plain::speckle_full(image, threshold, limit);
  const std::size_t count = image.width * image.height;
  with_threshold(threshold, [&](const auto& thresholds) {
    Regions regions(image.pixels, image.width, image.height, image.invalid, thresholds);
    if (!regions.find(largest(limit), WorkSpace(image.work, 9 * count), [](std::size_t) {})) {
      return plain::speckle_full(image, threshold, limit);
    }
    const RegionLimit limit_at(limit, image.width, image.height);
    const auto place = [&](std::size_t pixel) {
      return limit_at(pixel / image.width, pixel % image.width);
    };
    const U16 invalid = U16::splat(image.invalid);
    remove(regions, limit, place, [&](std::size_t pixel, std::size_t length) {
      fill(image.pixels + pixel, length, invalid);
    });
  });
}

void speckle_pyramid(const SpeckleImage& image, const SpeckleThreshold& threshold,
                     const SpeckleLimit& limit) {
  if (!threshold.by_table && threshold.max_diff < 0)
    return plain::speckle_pyramid(image, threshold, limit);
  const std::size_t width = image.width / 2;
  const std::size_t height = image.height / 2;
  const std::size_t end = image.width * image.height;
  WorkSpace work(image.work, 9 * end);
  std::uint16_t* const pixels = work.take<std::uint16_t>(width * height);
  with_threshold(threshold, [&](const auto& thresholds) {
    Lattice lattice(image, pixels, thresholds);
    if (limit.map == nullptr && limit.max_size < 1) return lattice.prepare(width * height);

    Regions regions(pixels, width, height, image.invalid, thresholds);
    const bool found = regions.find(largest(limit), work, [&](std::size_t batch) {
      lattice.prepare((batch + 1) * regions.kBatch + width + 1);
    });
    // What has been smoothed already is smoothed the same way again.
    if (!found) return plain::speckle_pyramid(image, threshold, limit);
    const RegionLimit limit_at(limit, image.width, image.height);
    const auto place = [&](std::size_t pixel) {
      return limit_at(2 * (pixel / width) + 1, 2 * (pixel % width) + 1);
    };
    const U16 invalid = U16::splat(image.invalid);
    std::size_t row = 0;
    remove(regions, limit, place, [&](std::size_t pixel, std::size_t length) {
      while (pixel >= (row + 1) * width) ++row;
      const std::size_t upper = 2 * row * image.width + 2 * (pixel - row * width);
      for (const std::size_t first : {upper, upper + image.width}) {
        fill(image.pixels + first, 2 * length, invalid);
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
  plain::speckle_upsample(full, stride, half, half_width, half_height, max_diff);
}

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
