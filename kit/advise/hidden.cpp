#include <algorithm>
#include <cmath>

#include "kit/advise/planting.h"

namespace kit {

namespace {

constexpr std::size_t kBlocks[] = {2, 4, 8, 16, 32};
constexpr double kBlockShare = 0.004;  // of the frame, for each size
constexpr std::size_t kBand = 4, kStripe = 32;
constexpr float kEdge = 0.1f;

/// Hides by place, each pixel once, as the frame was before.
class Hider {
 public:
  explicit Hider(PlantedFrame& planted)
      : planted_(planted),
        old_(planted.frame.pixels),
        width_(planted.frame.width),
        height_(planted.frame.height) {}

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  float before(std::size_t x, std::size_t y) const { return planted_.inverses[old_[y * width_ + x]]; }

  void hide(std::size_t x, std::size_t y) {
    const std::size_t pixel = y * width_ + x;
    const float inverse = planted_.inverses[planted_.frame.pixels[pixel]];
    if (inverse <= 0) return;
    planted_.frame.pixels[pixel] = planted_.invalid;
    hidden_.push_back({pixel, inverse, 0});
  }
  std::vector<Planted> take() { return std::move(hidden_); }

 private:
  PlantedFrame& planted_;
  std::vector<std::uint16_t> old_;
  std::size_t width_, height_;
  std::vector<Planted> hidden_;
};

void hide_moved_holes(Hider& hider, Chance& chance) {
  const std::size_t right = hider.width() / 8 + chance.below(hider.width() / 4);
  const std::size_t down = chance.below(hider.height());
  for (std::size_t y = 0; y < hider.height(); ++y) {
    for (std::size_t x = 0; x < hider.width(); ++x) {
      if (hider.before(x, y) <= 0) hider.hide((x + right) % hider.width(), (y + down) % hider.height());
    }
  }
}

void hide_blocks(Hider& hider, Chance& chance) {
  for (const std::size_t size : kBlocks) {
    if (size >= std::min(hider.width(), hider.height()) / 4) break;
    const double area = static_cast<double>(hider.width() * hider.height());
    const auto blocks =
        static_cast<std::size_t>(kBlockShare * area / static_cast<double>(size * size)) + 1;
    for (std::size_t i = 0; i < blocks; ++i) {
      const std::size_t left = chance.below(hider.width() - size),
                        top = chance.below(hider.height() - size);
      for (std::size_t pixel = 0; pixel < size * size; ++pixel)
        hider.hide(left + pixel % size, top + pixel / size);
    }
  }
}

/// What lies beside something nearer, as the bands do that one of two cameras does not see.
void hide_behind_edges(Hider& hider, Chance& chance) {
  for (std::size_t y = chance.below(kStripe); y < hider.height(); ++y) {
    if (y / kStripe % 4 != 0) continue;
    for (std::size_t x = kBand; x < hider.width(); ++x) {
      const float here = hider.before(x, y), left = hider.before(x - 1, y);
      if (here <= 0 || left <= 0 || here - left < kEdge * here) continue;
      for (std::size_t band = 1; band <= kBand; ++band) hider.hide(x - band, y);
    }
  }
}

}  // namespace

std::vector<Planted> hide_pixels(PlantedFrame& planted, Chance& chance) {
  Hider hider(planted);
  hide_moved_holes(hider, chance);
  hide_blocks(hider, chance);
  hide_behind_edges(hider, chance);
  return hider.take();
}

void Hidden::add(const std::vector<Planted>& hidden, const InverseTable& inverses,
                 std::span<const std::uint16_t> filtered) {
  for (const Planted& each : hidden) {
    count += 1;
    const float found = inverses[filtered[each.pixel]];
    if (found <= 0) continue;
    filled += 1;
    errors.add(found, each.before);
  }
}

}  // namespace kit
