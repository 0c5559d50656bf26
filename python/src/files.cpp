#include "files.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <pybind11/stl.h>

#include "arrays.h"
#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/image/image_files.h"

namespace py = pybind11;

namespace zvpython {

namespace {

std::vector<std::string> extensions() {
  std::vector<std::string> all;
  for (const kit::Codec& codec : kit::codecs())
    all.insert(all.end(), codec.extensions.begin(), codec.extensions.end());
  return all;
}

const kit::Codec& codec_of(const std::string& path) {
  const kit::Codec* codec = kit::codec_of(path);
  if (codec == nullptr)
    kit::refuse(path, ": is of no known format; expected a name ending in ",
                kit::join(extensions(), ", "));
  return *codec;
}

Pixels read_image(const std::string& path, std::uint32_t width, std::uint32_t height) {
  kit::Image image;
  {
    const py::gil_scoped_release others_run;
    codec_of(path);
    image = kit::read_image(path, {width, height});
  }
  return array_of(std::move(image));
}

/// @param pixels without gaps
void write_image(const std::string& path, const Pixels& pixels) {
  const FrameRows rows = rows_of(pixels);
  const py::gil_scoped_release others_run;
  const std::span all(rows.pixels, std::size_t{rows.width} * rows.height);
  const kit::Bytes file = codec_of(path).encode({rows.width, rows.height, all});
  kit::write_whole(path, file, kit::Durability::buffered);
}

void write_text(const std::string& path, const std::string& text) {
  const py::gil_scoped_release others_run;
  kit::write_text(path, text, kit::Durability::synced);
}

}  // namespace

void bind_files(py::module_& module) {
  module.attr("extensions") = py::cast(extensions());
  module.attr("preview_suffix") = kit::kPreviewSuffix;
  module.def("read_image", &read_image, py::arg("path"), py::arg("width"), py::arg("height"));
  module.def("write_image", &write_image, py::arg("path"), py::arg("pixels").noconvert());
  module.def("write_text", &write_text, py::arg("path"), py::arg("text"));
}

}  // namespace zvpython
