#ifndef KIT_ADVISE_LATTICE_H
#define KIT_ADVISE_LATTICE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "kit/frame/frame.h"

namespace kit {

/// Inverse depths in 1/m, 0 where invalid: their errors count alike near and far, as those of disparity do.
using Inverses = std::vector<float>;

/// Every n-th pixel of every n-th row, so that some 32000 stand for a frame.
class Lattice {
 public:
  static constexpr double kPixels = 32768;

  Lattice(std::uint32_t width, std::uint32_t height);

  std::uint32_t columns() const { return columns_; }
  std::uint32_t rows() const { return rows_; }
  std::size_t size() const { return std::size_t{columns_} * rows_; }
  /// The pixels at the places, row after row.
  std::vector<std::uint16_t> sample(std::span<const std::uint16_t> pixels) const;

 private:
  std::uint32_t width_, step_, columns_, rows_;
};

/// The inverse depth of every pixel value.
class InverseTable {
 public:
  explicit InverseTable(const FrameView& frame);
  float operator[](std::uint16_t pixel) const { return (*values_)[pixel]; }
  Inverses operator()(std::span<const std::uint16_t> pixels) const;

 private:
  std::unique_ptr<std::array<float, kSampleValues>> values_;
};

}  // namespace kit

#endif
