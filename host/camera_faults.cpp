#include "camera_faults.h"

#include <algorithm>
#include <cmath>

#include "hash_noise.h"

namespace devhost {

namespace {

constexpr std::int64_t kSpeckleCell = 16, kEdgeReach = 3;

class Faults {
 public:
  Faults(const CameraFaults& faults, const MatchedView& view, std::uint64_t salt, Match& match)
      : faults_(faults),
        left_(view.left),
        disparities_(view.disparities),
        salt_(salt),
        width_(left_.width - 2 * kMatchMargin),
        height_(left_.height - 2 * kMatchMargin),
        match_(match) {}

  void add_noise() {
    for_each_pixel([&](std::int64_t x, std::int64_t y, float& disparity) {
      const std::size_t at = seen_at(x, y);
      // Less light comes back from afar and from surfaces that turn away.
      const double distance = 0.6 + 0.4 * static_cast<double>(left_.depth[at]) / 1000;
      const double facing = std::max(static_cast<double>(left_.glances[at].facing), 0.2);
      const double deviation = static_cast<double>(faults_.noise) * distance / facing;
      const double noisy = static_cast<double>(disparity) + deviation * bell(hash(salt_ + 1, x, y));
      disparity = noisy > 0.5 ? static_cast<float>(noisy) : 0.0f;
    });
  }

  /// Round spots of a wrong disparity, 1.5 to 5 pixels in radius, flat as what matches by accident is.
  void add_speckle() {
    // The mean area of a spot is 27 pixels. A cell holds several where one is not enough.
    const double spots = static_cast<double>(faults_.speckle) * kSpeckleCell * kSpeckleCell / 27;
    for (std::int64_t row = 0; row * kSpeckleCell < height_; ++row) {
      for (std::int64_t column = 0; column * kSpeckleCell < width_; ++column) {
        for (unsigned spot = 0; spot < spots; ++spot) {
          const std::uint64_t salt = salt_ + 8 * spot;
          const std::uint64_t bits = hash(salt + 2, column, row);
          const double radius = 1.5 + 3.5 * fraction(bits, 0) * fraction(bits, 0);
          if (fraction(bits, 16) < spots - spot) spoil(row, column, radius, hash(salt + 3, column, row));
        }
      }
    }
  }

  void add_dropouts() {
    for_each_pixel([&](std::int64_t x, std::int64_t y, float& disparity) {
      const std::size_t at = seen_at(x, y);
      const bool dark = left_.grey[at] < 30;
      const bool shiny = left_.glances[at].shine > 0.97f;
      if (!dark && !shiny && !beside_edge(x, y)) return;
      // Neighbours are missing together.
      const double together =
          0.5 + 0.5 * value_noise(salt_ + 4, static_cast<double>(x) / 4, static_cast<double>(y) / 4);
      const double alone = fraction(hash(salt_ + 5, x, y), 8);
      if (0.5 * (together + alone) < static_cast<double>(faults_.dropouts)) disparity = 0;
    });
  }

 private:
  template <typename Work>
  void for_each_pixel(const Work& work) {
    for (std::int64_t y = 0; y < height_; ++y) {
      for (std::int64_t x = 0; x < width_; ++x) {
        float& disparity = match_.disparity[static_cast<std::size_t>(y * width_ + x)];
        if (disparity > 0) work(x, y, disparity);
      }
    }
  }

  std::size_t seen_at(std::int64_t x, std::int64_t y) const {
    return static_cast<std::size_t>((y + kMatchMargin) * left_.width + x + kMatchMargin);
  }

  bool beside_edge(std::int64_t x, std::int64_t y) const {
    const float here = left_.depth[seen_at(x, y)];
    const auto steps = [&](std::int64_t dx, std::int64_t dy) {
      return std::abs(left_.depth[seen_at(x + dx, y + dy)] - here) > 0.05f * here;
    };
    return steps(kEdgeReach, 0) || steps(-kEdgeReach, 0) || steps(0, kEdgeReach) || steps(0, -kEdgeReach);
  }

  void spoil(std::int64_t row, std::int64_t column, double radius, std::uint64_t bits) {
    const double x0 = (static_cast<double>(column) + fraction(bits, 0)) * kSpeckleCell;
    const double y0 = (static_cast<double>(row) + fraction(bits, 16)) * kSpeckleCell;
    const double wrong = 2 + fraction(bits, 32) * (static_cast<double>(disparities_) - 3);
    for_each_pixel_of(x0, y0, radius, [&](float& disparity) { disparity = static_cast<float>(wrong); });
  }

  template <typename Work>
  void for_each_pixel_of(double x0, double y0, double radius, const Work& work) {
    const auto from = [](double v) {
      return std::max<std::int64_t>(static_cast<std::int64_t>(std::ceil(v)), 0);
    };
    const auto to = [](double v, std::int64_t size) {
      return std::min(static_cast<std::int64_t>(std::floor(v)), size - 1);
    };
    for (std::int64_t y = from(y0 - radius); y <= to(y0 + radius, height_); ++y) {
      for (std::int64_t x = from(std::max(x0 - radius, static_cast<double>(disparities_)));
           x <= to(x0 + radius, width_); ++x) {
        const double dx = static_cast<double>(x) - x0, dy = static_cast<double>(y) - y0;
        if (dx * dx + dy * dy <= radius * radius)
          work(match_.disparity[static_cast<std::size_t>(y * width_ + x)]);
      }
    }
  }

  const CameraFaults& faults_;
  const Picture& left_;
  std::uint32_t disparities_;
  std::uint64_t salt_;
  std::int64_t width_, height_;
  Match& match_;
};

}  // namespace

void add_faults(const CameraFaults& faults, const MatchedView& view, std::uint64_t salt, Match& match) {
  Faults all(faults, view, salt, match);
  if (faults.noise > 0) all.add_noise();
  if (faults.speckle > 0) all.add_speckle();
  if (faults.dropouts > 0) all.add_dropouts();
  // What has become valid or invalid has a confidence, or none.
  for (std::size_t i = 0; i < match.disparity.size(); ++i) {
    std::uint8_t& confidence = match.confidence[i];
    confidence = match.disparity[i] > 0 ? std::max<std::uint8_t>(confidence, 1) : std::uint8_t{0};
  }
}

}  // namespace devhost
