#ifndef ZVFILTER_PYTHON_ARRAYS_H
#define ZVFILTER_PYTHON_ARRAYS_H

#include <cstdint>

#include <pybind11/numpy.h>

#include "kit/image/image.h"
#include "zvfilter/zvfilter.h"

namespace zvpython {

using Pixels = pybind11::array_t<std::uint16_t>;

/// The rows of a frame, which the array keeps.
struct FrameRows {
  const std::uint16_t* pixels;
  std::uint32_t width, height;
  std::size_t stride;  ///< bytes
};
/// @throws std::invalid_argument unless it has rows and columns, and the pixels of a row lie side by side
FrameRows rows_of(const Pixels& array);

/// Arrays over memory that was made elsewhere, which they keep and may be written to.
Pixels array_of(zvf_frame* frame);
Pixels array_of(kit::Image&& image);

}  // namespace zvpython

#endif
