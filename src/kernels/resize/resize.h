#ifndef FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_H
#define FILTERPROCESSOR_KERNELS_RESIZE_RESIZE_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {

/// One axis of a nearest-neighbour resize in 16.16 fixed point. Target position first + i, up to end,
/// takes source position (start + i x step) >> 16 in 32 bits that wrap, or 0 where that is not inside the
/// source.
struct ResizeAxis {
  std::size_t source_size;
  std::size_t target_size;
  std::size_t first;  ///< at most end
  std::size_t end;    ///< at most target_size
  std::uint32_t start;
  std::uint32_t step;

  std::size_t start_position() const { return start >> 16; }
  /// Whether all target positions take consecutive source positions inside the source.
  bool copies_all() const {
    if (first != 0 || end != target_size || end == 0) return false;
    const std::uint64_t last = start + std::uint64_t{step} * (end - 1);
    return (last >> 16) - start_position() == end - 1 && last >> 16 < source_size && last >> 32 == 0;
  }
  std::size_t source(std::size_t target) const {
    return (start + static_cast<std::uint32_t>(target - first) * step) >> 16;
  }
};

/// Resizing at one level.
struct ResizeKernels {
  /// Writes every pixel of `target`; those outside first..end of an axis become 0.
  using Resize = void(const std::uint16_t* source, const ResizeAxis& columns, const ResizeAxis& rows,
                      std::uint16_t* target);

  Resize* resize;
};

/// An axis' target size: extent x scale + before + after, each step rounded to 32 bits, truncated.
std::int32_t resized(float extent, float scale, std::int32_t before, std::int32_t after);

/// The axis for a target of at least 1; a source below 1 has no pixels. `before` pixels are added before
/// the scaled source, or removed where negative; `scale` is at least 0.001.
ResizeAxis resize_axis(std::int32_t source_size, std::int32_t target_size, float scale,
                       std::int32_t before);

namespace plain {
extern const ResizeKernels resize;
}

}  // namespace filterprocessor

#endif
