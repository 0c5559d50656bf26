#include "arrays.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

namespace py = pybind11;

namespace zvpython {

namespace {

Pixels array_over(std::uint32_t width, std::uint32_t height, const std::uint16_t* pixels,
                  const py::capsule& owner) {
  return Pixels({static_cast<py::ssize_t>(height), static_cast<py::ssize_t>(width)}, pixels, owner);
}

}  // namespace

FrameRows rows_of(const Pixels& array) {
  if (array.ndim() != 2) throw std::invalid_argument("a frame has rows and columns");
  constexpr py::ssize_t kSample = sizeof(std::uint16_t);
  const py::ssize_t height = array.shape(0), width = array.shape(1);
  const py::ssize_t stride = height > 1 ? array.strides(0) : width * kSample;
  if (array.size() > 0 && width > 1 && array.strides(1) != kSample)
    throw std::invalid_argument("the pixels of a row have to lie side by side");
  if (array.size() > 0 && stride < width * kSample)
    throw std::invalid_argument("rows have to lie one after the other");
  // Sides that no frame can have are the library's to refuse.
  const auto side = [](py::ssize_t length) {
    return static_cast<std::uint32_t>(std::min<py::ssize_t>(length, 1 << 30));
  };
  return {array.data(), side(width), side(height),
          static_cast<std::size_t>(std::max<py::ssize_t>(stride, 0))};
}

Pixels array_of(zvf_frame* frame) {
  const py::capsule owner(frame, [](void* held) { zvf_frame_release(static_cast<zvf_frame*>(held)); });
  const zvf_view view = zvf_frame_view(frame);
  return array_over(view.width, view.height, view.pixels, owner);
}

Pixels array_of(kit::Image&& image) {
  auto held = std::make_unique<kit::Image>(std::move(image));
  const py::capsule owner(held.get(), [](void* each) { delete static_cast<kit::Image*>(each); });
  const kit::Image& kept = *held.release();
  return array_over(kept.width, kept.height, kept.pixels.data(), owner);
}

}  // namespace zvpython
