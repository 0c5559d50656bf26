#include "kit/report/pictures.h"

#include <algorithm>
#include <cmath>

namespace kit {

namespace {

constexpr unsigned char kDifferences = 251;  // an odd number of colours has one in the middle
constexpr std::size_t kKinds = 4;

/// The picture of every n-th pixel, whose index `index_of(place)` says.
template <typename IndexOf>
IndexedPicture sample(const Frame& frame, std::vector<Rgb> palette, const IndexOf& index_of) {
  const std::uint32_t step = picture_step(frame);
  IndexedPicture picture{
      (frame.width + step - 1) / step, (frame.height + step - 1) / step, std::move(palette), {}};
  picture.indexes.reserve(std::size_t{picture.width} * picture.height);
  for (std::size_t y = 0; y < frame.height; y += step) {
    for (std::size_t x = 0; x < frame.width; x += step)
      picture.indexes.push_back(index_of(y * frame.width + x));
  }
  return picture;
}

/// The next of 1, 2, 5, 10, 20, 50...
double rounded_up(double value) {
  const double power = std::pow(10, std::floor(std::log10(value)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (value <= factor * power * (1 + 1e-9)) return factor * power;
  }
  return 10 * power;
}

/// That 19 of 20 changes are below.
double limit_of(std::vector<double> changes) {
  if (changes.empty()) return 1;
  const auto place = changes.begin() + static_cast<std::ptrdiff_t>((changes.size() - 1) * 19 / 20);
  std::nth_element(changes.begin(), place, changes.end());
  return rounded_up(*place);
}

}  // namespace

std::uint32_t picture_step(const Frame& frame) {
  return (std::max(frame.width, frame.height) + kMostPictureSide - 1) / kMostPictureSide;
}

unsigned char color_index(double value, const Interval& range) {
  if (std::isnan(value)) return 0;
  const double position = std::clamp((value - range.low) / (range.high - range.low), 0.0, 1.0);
  return static_cast<unsigned char>(1 + std::floor(position * 254 + 0.5));
}

IndexedPicture depth_picture(const Frame& frame, const Interval& range) {
  const Meaning meaning(frame);
  std::vector<Rgb> palette = {hole_color(kPictureMap)};
  for (int i = 0; i < 255; ++i) palette.push_back(color_of(kPictureMap, i / 254.0));
  std::vector<unsigned char> index_of(meaning.values().size());
  std::transform(meaning.values().begin(), meaning.values().end(), index_of.begin(),
                 [&](double value) { return color_index(value, range); });
  return sample(frame, std::move(palette), [&](std::size_t i) { return index_of[frame.pixels[i]]; });
}

const std::vector<Rgb>& Difference::kind_colors() {
  constexpr HoleColors holes;
  static const std::vector<Rgb> colors = {holes.hole, holes.filled, holes.removed, signed_color(0)};
  return colors;
}

bool same_shape(const Frame& a, const Frame& b) {
  const double wider = static_cast<double>(a.width) * b.height;
  const double higher = static_cast<double>(b.width) * a.height;
  return std::abs(wider - higher) <= 0.01 * wider;
}

Difference difference_of(const Frame& before, const Frame& after) {
  const Meaning old_meaning(before), new_meaning(after);
  std::vector<double> resized(before.pixels.size());  // the second in the size of the first
  for (std::size_t y = 0, i = 0; y < before.height; ++y) {
    const std::size_t row = y * after.height / before.height * after.width;
    for (std::size_t x = 0; x < before.width; ++x, ++i)
      resized[i] = new_meaning(after.pixels[row + x * after.width / before.width]);
  }
  Difference difference;
  std::vector<double> changes;
  for (std::size_t i = 0; i < before.pixels.size(); ++i) {
    const double change = std::abs(resized[i] - old_meaning(before.pixels[i]));
    if (change > 0) changes.push_back(change);
  }
  difference.limit = limit_of(std::move(changes));
  std::vector<Rgb> palette = Difference::kind_colors();
  for (int i = 0; i < kDifferences; ++i)
    palette.push_back(signed_color(2 * i / (kDifferences - 1.0) - 1));
  difference.picture = sample(before, std::move(palette), [&](std::size_t i) -> unsigned char {
    const double from = old_meaning(before.pixels[i]), to = resized[i];
    if (std::isnan(from) || std::isnan(to))
      return std::isnan(to) ? (std::isnan(from) ? Difference::none : Difference::lost)
                            : Difference::gained;
    if (from == to) return Difference::equal;
    const double position = std::clamp((to - from) / difference.limit, -1.0, 1.0) / 2 + 0.5;
    return static_cast<unsigned char>(kKinds +
                                      static_cast<unsigned>(position * (kDifferences - 1) + 0.5));
  });
  return difference;
}

}  // namespace kit
