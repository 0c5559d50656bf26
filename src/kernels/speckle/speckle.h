#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// What a speckle kernel works on: `width` x `height` pixels (both below 32768), changed in place, and 9
/// bytes of work space for each.
struct SpeckleImage {
  std::uint16_t* pixels;
  unsigned char* work;
  std::size_t width;
  std::size_t height;
  std::uint16_t invalid;
};

/// The largest difference that joins a neighbour to a pixel: `max_diff`, or an entry of a table for the
/// pixel's value when `by_table`.
struct SpeckleThreshold {
  bool by_table;
  std::int32_t max_diff;
  const std::uint16_t* table;
  std::uint8_t shift;
  std::uint8_t size;

  static SpeckleThreshold fixed(std::int32_t max_diff) { return {false, max_diff, nullptr, 0, 0}; }
  static SpeckleThreshold from_table(const std::uint16_t* table, std::uint8_t shift, std::uint8_t size) {
    return {true, 0, table, shift, size};
  }
};

/// The largest region that is removed: `max_size`, or the entry of a map for the region's first pixel
/// unless the map is null. A map has 1 to `width` columns and 1 to `height` rows of the full image.
struct SpeckleLimit {
  std::int32_t max_size;
  const std::uint16_t* map;
  std::size_t map_cols;
  std::size_t map_rows;

  static SpeckleLimit fixed(std::int32_t max_size) { return {max_size, nullptr, 0, 0}; }
};

/// Speckle removal at one level; filterprocessor/speckle.h has the rules. Nothing outside the image and
/// its work space is read or written.
struct SpeckleKernels {
  using Remove = void(const SpeckleImage& image, const SpeckleThreshold& threshold,
                      const SpeckleLimit& limit);
  /// `full` has rows of `stride` pixels, at least twice the half image's width.
  using Downsample = void(const std::uint16_t* full, std::size_t stride, std::uint16_t* half,
                          std::size_t half_width, std::size_t half_height);
  using Upsample = void(std::uint16_t* full, std::size_t stride, const std::uint16_t* half,
                        std::size_t half_width, std::size_t half_height, std::int32_t max_diff);

  Remove* full;
  Remove* pyramid;
  Downsample* downsample;
  Upsample* upsample;
};

namespace plain {
extern const SpeckleKernels speckle;
}

}  // namespace filterprocessor

#endif
