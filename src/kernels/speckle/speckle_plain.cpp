#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "kernels/speckle/speckle.h"
#include "kernels/speckle/speckle_rules.h"

namespace filterprocessor::plain {

namespace {

/// Values in the work space, which has no particular alignment.
template <typename T>
class WorkArea {
 public:
  explicit WorkArea(unsigned char* bytes) : bytes_(bytes) {}
  T get(std::size_t i) const {
    T value;
    std::memcpy(&value, bytes_ + i * sizeof value, sizeof value);
    return value;
  }
  void set(std::size_t i, T value) { std::memcpy(bytes_ + i * sizeof value, &value, sizeof value); }

 private:
  unsigned char* bytes_;
};

struct Position {
  std::uint16_t col;
  std::uint16_t row;
};

/// Region growth on the pixels whose row and column are odd (Step 2) or on all (Step 1).
template <std::size_t Step, typename Threshold>
class Growth {
 public:
  Growth(const SpeckleImage& image, const SpeckleThreshold& threshold, const SpeckleLimit& limit)
      : image_(image),
        threshold_(threshold),
        limit_(limit, image.width, image.height),
        labels_(image.work),
        stack_(image.work + 4 * image.width * image.height),
        removed_(image.work + 8 * image.width * image.height) {
    std::memset(image.work, 0, 4 * image.width * image.height);
  }

  /// Settles the region of a valid pixel, growing it if the pixel is its first.
  /// @return whether the region is removed
  bool removed_at(std::size_t row, std::size_t col) {
    const std::int32_t known = labels_.get(row * image_.width + col);
    if (known != 0) return removed_.get(static_cast<std::size_t>(known) - 1) != 0;
    ++label_;
    const bool removed = grow(row, col) < limit_(row, col);
    removed_.set(static_cast<std::size_t>(label_) - 1, removed);
    return removed;
  }

  std::int32_t threshold(std::uint16_t value) const { return threshold_(value); }

 private:
  /// @return the region's size - 1
  std::int32_t grow(std::size_t seed_row, std::size_t seed_col) {
    const std::size_t width = image_.width;
    labels_.set(seed_row * width + seed_col, label_);
    std::int32_t count = -1;
    std::size_t top = 0;
    Position at{static_cast<std::uint16_t>(seed_col), static_cast<std::uint16_t>(seed_row)};
    while (true) {
      const std::size_t row = at.row;
      const std::size_t col = at.col;
      const std::size_t center = row * width + col;
      const std::int32_t value = image_.pixels[center];
      const std::int32_t threshold = threshold_(image_.pixels[center]);
      const auto visit = [&](std::size_t next_row, std::size_t next_col, std::size_t between) {
        const std::size_t next = next_row * width + next_col;
        const std::uint16_t pixel = image_.pixels[next];
        if (labels_.get(next) != 0 || pixel == image_.invalid || std::abs(pixel - value) > threshold)
          return;
        labels_.set(next, label_);
        if constexpr (Step == 2) labels_.set(between, label_);
        stack_.set(top++, {static_cast<std::uint16_t>(next_col), static_cast<std::uint16_t>(next_row)});
      };
      const auto right = [&] {
        if (col + Step < width) visit(row, col + Step, center + 1);
      };
      const auto left = [&] {
        if (col >= Step) visit(row, col - Step, center - 1);
      };
      const auto down = [&] {
        if (row + Step < image_.height) visit(row + Step, col, center + width);
      };
      const auto up = [&] {
        if (row >= Step) visit(row - Step, col, center - width);
      };
      if constexpr (Step == 1) {
        right(), left(), down(), up();
      } else {
        down(), up(), right(), left();
      }
      ++count;
      if (top == 0) return count;
      at = stack_.get(--top);
    }
  }

  const SpeckleImage& image_;
  const Threshold threshold_;
  const RegionLimit limit_;
  WorkArea<std::int32_t> labels_;
  WorkArea<Position> stack_;
  WorkArea<unsigned char> removed_;  // by label - 1: with as many regions as pixels, the last lies inside
  std::int32_t label_ = 0;
};

template <typename Threshold>
void full(const SpeckleImage& image, const SpeckleThreshold& threshold, const SpeckleLimit& limit) {
  Growth<1, Threshold> growth(image, threshold, limit);
  for (std::size_t row = 0; row < image.height; ++row) {
    for (std::size_t col = 0; col < image.width; ++col) {
      std::uint16_t& pixel = image.pixels[row * image.width + col];
      if (pixel != image.invalid && growth.removed_at(row, col)) pixel = image.invalid;
    }
  }
}

template <typename Threshold>
void pyramid(const SpeckleImage& image, const SpeckleThreshold& threshold, const SpeckleLimit& limit) {
  Growth<2, Threshold> growth(image, threshold, limit);
  for (std::size_t row = 1; row < image.height; row += 2) {
    for (std::size_t col = 1; col < image.width; col += 2) {
      std::uint16_t* at = image.pixels + row * image.width + col;
      std::uint16_t* above = at - image.width;
      const std::uint16_t value = *at;
      if (value == image.invalid || growth.removed_at(row, col)) {
        at[0] = at[-1] = above[0] = above[-1] = image.invalid;
        continue;
      }
      for (std::uint16_t* pixel : {at - 1, above, above - 1}) {
        if (std::abs(*pixel - value) > growth.threshold(value)) *pixel = value;
      }
    }
  }
}

void speckle_full(const SpeckleImage& image, const SpeckleThreshold& threshold,
                  const SpeckleLimit& limit) {
  (threshold.by_table ? full<TableThreshold> : full<FixedThreshold>)(image, threshold, limit);
}

void speckle_pyramid(const SpeckleImage& image, const SpeckleThreshold& threshold,
                     const SpeckleLimit& limit) {
  (threshold.by_table ? pyramid<TableThreshold> : pyramid<FixedThreshold>)(image, threshold, limit);
}

void speckle_downsample(const std::uint16_t* full, std::size_t stride, std::uint16_t* half,
                        std::size_t half_width, std::size_t half_height) {
  for (std::size_t row = 0; row < half_height; ++row) {
    for (std::size_t col = 0; col < half_width; ++col) {
      half[row * half_width + col] = full[(2 * row + 1) * stride + 2 * col + 1];
    }
  }
}

void speckle_upsample(std::uint16_t* full, std::size_t stride, const std::uint16_t* half,
                      std::size_t half_width, std::size_t half_height, std::int32_t max_diff) {
  const auto differ = [max_diff](std::uint16_t x, std::uint16_t y) { return std::abs(x - y) > max_diff; };
  for (std::size_t row = 0; row < half_height; ++row) {
    const bool edge = row == 0 || row + 1 == half_height;
    for (std::size_t col = edge ? 0 : 1; col < half_width; ++col) {
      const std::uint16_t* at = half + row * half_width + col;
      const std::uint16_t s = *at;
      std::uint16_t& a = full[2 * row * stride + 2 * col];
      std::uint16_t& b = (&a)[1];
      std::uint16_t& c = (&a)[stride];
      std::uint16_t& d = (&a)[stride + 1];
      if (edge) {
        for (std::uint16_t* pixel : {&a, &b, &c}) {
          if (s == 0 || differ(*pixel, s)) *pixel = s;
        }
        d = s;
      } else {
        const std::uint16_t above = *(at - half_width);
        const std::uint16_t left = at[-1];
        if (differ(a, s) && differ(a, above) && differ(a, left)) a = 0;
        if (differ(b, s) && differ(b, above)) b = 0;
        if (differ(c, s) && differ(c, left)) c = 0;
        if (d != 0 && differ(d, s)) d = s;
      }
    }
  }
}

}  // namespace

extern const SpeckleKernels speckle = {speckle_full, speckle_pyramid, speckle_downsample,
                                       speckle_upsample};

}  // namespace filterprocessor::plain
