#include "camera.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <pybind11/stl.h>

#include "arrays.h"
#include "failure.h"
#include "input.h"
#include "virtual_camera.h"

namespace py = pybind11;

namespace zvpython {

namespace {

using devhost::VirtualCamera;

constexpr std::int32_t kPacked = 34;  // of CameraConfig::format

std::unique_ptr<VirtualCamera> make_camera(std::int64_t width, std::int64_t height, std::uint64_t seed,
                                           double baseline, double fx, std::int64_t pack_mode,
                                           std::int64_t bits, bool packed,
                                           std::optional<std::int64_t> correction, bool dual,
                                           const std::string& motion, float texture, float noise,
                                           float speckle, float dropouts) {
  constexpr std::pair<const char*, devhost::Motion> kMotions[] = {{"still", devhost::Motion::still},
                                                                  {"objects", devhost::Motion::objects},
                                                                  {"camera", devhost::Motion::camera}};
  const auto* const moved = std::find_if(std::begin(kMotions), std::end(kMotions),
                                         [&](const auto& each) { return each.first == motion; });
  if (moved == std::end(kMotions))
    throw std::invalid_argument("motion is " + motion + "; expected still, objects or camera");
  return std::make_unique<VirtualCamera>(
      devhost::CameraConfig{.width = narrow<std::uint32_t>("width", width),
                            .height = narrow<std::uint32_t>("height", height),
                            .seed = seed,
                            .baseline = static_cast<float>(baseline),
                            .fx = fx,
                            .pack_mode = narrow<std::uint8_t>("pack_mode", pack_mode),
                            .bit_size = narrow<std::uint8_t>("bits", bits),
                            .format = packed ? kPacked : 0,
                            .disparity_correction = correction,
                            .dual = dual,
                            .motion = moved->second,
                            .texture = texture,
                            .faults = {.noise = noise, .speckle = speckle, .dropouts = dropouts}});
}

devhost::CameraFrame frame_of(const VirtualCamera& camera, std::int64_t index) {
  const auto number = narrow<unsigned>("index", index);
  const py::gil_scoped_release others_run;
  return camera.frame(number);
}

py::tuple images_of(const VirtualCamera& camera, std::int64_t index) {
  devhost::CameraFrame made = frame_of(camera, index);
  const std::uint32_t width = made.disparity.width, height = made.disparity.height;
  return py::make_tuple(array_of(kit::Image{width, height, std::move(made.disparity.pixels)}),
                        array_of(kit::Image{width, height, std::move(made.truth)}));
}

py::dict input_of(const VirtualCamera& camera) {
  kit::Input input{frame_of(camera, 0).disparity, true, true};
  input.traits.pixels.clear();
  return input_fields(input_record(std::move(input)));
}

}  // namespace

void bind_camera(py::module_& module) {
  py::class_<VirtualCamera>(module, "NativeCamera")
      .def(py::init(&make_camera), py::arg("width"), py::arg("height"), py::arg("seed"),
           py::arg("baseline"), py::arg("fx"), py::arg("pack_mode"), py::arg("bits"), py::arg("packed"),
           py::arg("correction"), py::arg("dual"), py::arg("motion"), py::arg("texture"),
           py::arg("noise"), py::arg("speckle"), py::arg("dropouts"))
      .def("frame", &images_of, py::arg("index"))
      .def("input", &input_of);
}

}  // namespace zvpython
