#include "kit/advise/lattice.h"

#include <algorithm>
#include <cmath>

#include "kit/frame/depth_reader.h"

namespace kit {

Lattice::Lattice(std::uint32_t width, std::uint32_t height)
    : width_(width),
      step_(static_cast<std::uint32_t>(
          std::max(1.0, std::ceil(std::sqrt(double{1} * width * height / kPixels))))),
      columns_((width - 1 - step_ / 2) / step_ + 1),
      rows_((height - 1 - step_ / 2) / step_ + 1) {}

std::vector<std::uint16_t> Lattice::sample(std::span<const std::uint16_t> pixels) const {
  std::vector<std::uint16_t> sampled;
  sampled.reserve(size());
  for (std::uint32_t row = 0; row < rows_; ++row) {
    const std::uint16_t* const from =
        pixels.data() + (std::size_t{row} * step_ + step_ / 2) * width_ + step_ / 2;
    for (std::uint32_t column = 0; column < columns_; ++column)
      sampled.push_back(from[std::size_t{column} * step_]);
  }
  return sampled;
}

InverseTable::InverseTable(const FrameView& frame)
    : values_(std::make_unique<std::array<float, kSampleValues>>()) {
  const DepthReader reader(frame);
  for (std::size_t pixel = 0; pixel < values_->size(); ++pixel) {
    const double depth = reader.millimetres(static_cast<std::uint16_t>(pixel));
    (*values_)[pixel] = depth > 0 ? static_cast<float>(1000 / depth) : 0.0f;
  }
}

Inverses InverseTable::operator()(std::span<const std::uint16_t> pixels) const {
  Inverses inverses(pixels.size());
  std::transform(pixels.begin(), pixels.end(), inverses.begin(),
                 [this](std::uint16_t pixel) { return (*values_)[pixel]; });
  return inverses;
}

}  // namespace kit
