// The exported kernels on copies of arrays. Here are the checks that their pointers need; what they refuse themselves becomes a
// ValueError with the cause.
#include "kernels.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include "failure.h"
#include "filterprocessor/hole_filling.h"
#include "filterprocessor/margin.h"
#include "filterprocessor/spatial.h"
#include "filterprocessor/speckle.h"
#include "filterprocessor/temporal.h"

namespace py = pybind11;

namespace zvpython {

namespace {

using Image = py::array_t<std::uint16_t, py::array::c_style>;
using Table = std::optional<Image>;

[[noreturn]] void refuse(const std::string& cause) { throw std::invalid_argument(cause); }

std::int32_t int32(const char* name, std::int64_t value) { return narrow<std::int32_t>(name, value); }

Image copy_of(const Image& image) {
  if (image.ndim() != 2) refuse("an image has rows and columns");
  Image copy({image.shape(0), image.shape(1)});
  std::memcpy(copy.mutable_data(), image.data(), static_cast<std::size_t>(image.nbytes()));
  return copy;
}

/// Pixels of a copy while the kernel works on them, without the interpreter.
struct Work {
  std::uint16_t* pixels;
  std::int32_t width, height;
};

/// @param kernel may return what it refuses, or nothing
template <typename Kernel>
Image filtered(const Image& depth, const Kernel& kernel) {
  Image result = copy_of(depth);
  const Work work = {result.mutable_data(), int32("width", result.shape(1)),
                     int32("height", result.shape(0))};
  const py::gil_scoped_release others_run;
  kernel(work);
  return result;
}

struct Thresholds {
  std::uint16_t* entries;
  std::uint8_t shift, size;
};

/// A table that its owner keeps. The kernels only read it, whatever their declarations say.
Thresholds thresholds_of(const Table& lut, std::int64_t shift) {
  if (!lut) return {nullptr, 0, 0};
  if (lut->ndim() != 1) refuse("lut is no list of thresholds; expected one dimension");
  return {const_cast<std::uint16_t*>(lut->data()), narrow<std::uint8_t>("lut_shift", shift),
          narrow<std::uint8_t>("the number of thresholds in lut", lut->shape(0))};
}

struct Map {
  std::uint16_t* limits;
  std::int32_t cols, rows;
};

Map map_of(const Table& map) {
  if (!map) return {nullptr, 0, 0};
  if (map->ndim() != 2 || map->size() == 0) refuse("max_size_map has no rows and columns");
  return {const_cast<std::uint16_t*>(map->data()), int32("columns of max_size_map", map->shape(1)),
          int32("rows of max_size_map", map->shape(0))};
}

Map fitting_map(const Table& map, const Image& depth) {
  const Map result = map_of(map);
  if (depth.ndim() == 2 && (result.rows > depth.shape(0) || result.cols > depth.shape(1)))
    refuse("max_size_map has more rows or columns than the image");
  return result;
}

Image fill_holes(const Image& depth, std::int64_t mode) {
  const std::int32_t number = int32("mode", mode);
  return filtered(depth, [=](const Work& work) {
    if (depth_api_hole_filling_filter(work.pixels, work.width, static_cast<std::uint32_t>(work.height),
                                      number) != 0)
      refuse(kit::concat("mode is ", mode, "; expected 0, 1 or 2"));
  });
}

void check_margin(std::int32_t status, const char* bad_argument) {
  if (status == -2) refuse("a margin is larger than its limit");
  if (status == -3) refuse(bad_argument);
  if (status == -4) throw std::bad_alloc();
}

Image margin(const Image& depth, std::int64_t margin_x, std::int64_t margin_y, std::int64_t limit_x,
             std::int64_t limit_y) {
  const std::int32_t mx = int32("margin_x", margin_x), my = int32("margin_y", margin_y),
                     lx = int32("limit_x", limit_x), ly = int32("limit_y", limit_y);
  return filtered(depth, [=](const Work& work) {
    check_margin(depth_api_margin_filter(work.pixels, work.width, work.height, mx, my, lx, ly), "");
  });
}

Image horizontal_margin(const Image& depth, std::int64_t margin, std::int64_t limit) {
  const std::int32_t m = int32("margin", margin), l = int32("limit", limit);
  return filtered(depth, [=](const Work& work) {
    check_margin(depth_api_horizontal_margin_filter(work.pixels, work.width, work.height, m, l), "");
  });
}

Image margin_asym(const Image& depth, std::int64_t margin_large, std::int64_t margin_small,
                  std::int64_t margin_y, std::int64_t limit_x, std::int64_t limit_y) {
  const std::int32_t large = int32("margin_large", margin_large),
                     small = int32("margin_small", margin_small), my = int32("margin_y", margin_y),
                     lx = int32("limit_x", limit_x), ly = int32("limit_y", limit_y);
  return filtered(depth, [=](const Work& work) {
    check_margin(
        depth_api_margin_filter_asym(work.pixels, work.width, work.height, large, small, my, lx, ly),
        "margin_large is smaller than margin_small");
  });
}

Image margin_with_chamfer(const Image& depth, std::int64_t margin_y, std::int64_t limit_x,
                          std::int64_t limit_y, const Image& chamfer) {
  const std::int32_t my = int32("margin_y", margin_y), lx = int32("limit_x", limit_x),
                     ly = int32("limit_y", limit_y);
  if (chamfer.ndim() != 2 || chamfer.shape(1) != 2 || depth.ndim() != 2 ||
      chamfer.shape(0) != depth.shape(0))
    refuse("chamfer is no pair of margins for each row; expected the shape (rows of the image, 2)");
  const std::uint16_t* const margins = chamfer.data();
  return filtered(depth, [=](const Work& work) {
    check_margin(
        depth_api_margin_filter_with_chamfer(work.pixels, work.width, work.height, my, lx, ly, margins),
        "");
  });
}

Image chamfer(std::int64_t span, std::int64_t count, std::int64_t corner_first, std::int64_t base,
              std::int64_t corner_second, std::int64_t radius) {
  constexpr std::int64_t kMostRows = 65535;
  if (count < 0 || count > kMostRows) refuse(kit::concat("count is ", count, "; expected 0 to 65535"));
  Image result({static_cast<py::ssize_t>(count), py::ssize_t{2}});
  depth_api_init_margin_chamfer(result.mutable_data(), int32("span", span), int32("count", count),
                                int32("corner_first", corner_first), int32("base", base),
                                int32("corner_second", corner_second), int32("radius", radius));
  return result;
}

struct Smoothing {
  std::int32_t magnitude;
  std::uint8_t radius, horizontal, vertical;
  float alpha;
};

Smoothing smoothing(std::int64_t magnitude, std::int64_t radius, bool horizontal, bool vertical,
                    double alpha) {
  if (magnitude < 1) refuse(kit::concat("magnitude is ", magnitude, "; expected at least 1"));
  if (!(alpha >= 0 && alpha <= 1)) refuse(kit::concat("alpha is ", alpha, "; expected 0 to 1"));
  if (!horizontal && !vertical) refuse("neither horizontal nor vertical; expected one of them or both");
  return {int32("magnitude", magnitude), narrow<std::uint8_t>("radius", radius),
          static_cast<std::uint8_t>(horizontal), static_cast<std::uint8_t>(vertical),
          static_cast<float>(alpha)};
}

std::uint16_t short_side(const char* name, std::int32_t side) {
  return narrow<std::uint16_t>(name, side);
}

Image spatial(const Image& depth, const Table& lut, std::int64_t lut_shift, double disp_diff,
              std::int64_t magnitude, std::int64_t radius, bool horizontal, bool vertical, double alpha) {
  const Thresholds table = thresholds_of(lut, lut_shift);
  const Smoothing s = smoothing(magnitude, radius, horizontal, vertical, alpha);
  return filtered(depth, [=](const Work& work) {
    const int status = depth_api_spatial_filter(
        work.pixels, short_side("width", work.width), short_side("height", work.height), table.entries,
        table.shift, table.size, s.magnitude, s.radius, s.horizontal, s.vertical, s.alpha,
        static_cast<float>(disp_diff));
    if (status != 0) refuse("the kernel refuses its arguments");
  });
}

py::tuple temporal(const Image& depth, const Image& history, double diff_scale, double weight) {
  if (history.ndim() != 2 || depth.ndim() != 2 || history.shape(0) != depth.shape(0) ||
      history.shape(1) != depth.shape(1))
    refuse("history is not of the image's shape");
  Image last = copy_of(history);
  std::uint16_t* const remembered = last.mutable_data();
  const Image result = filtered(depth, [=](const Work& work) {
    depth_api_temporal_filter(work.pixels, work.width, work.height, remembered,
                              static_cast<float>(diff_scale), static_cast<float>(weight));
  });
  return py::make_tuple(result, last);
}

/// @param kernel gets a buffer of the size that all these kernels need
template <typename Kernel>
Image filtered_with_buffer(const Image& depth, const Kernel& kernel) {
  return filtered(depth, [&](const Work& work) {
    constexpr std::size_t kBytesPerPixel = 9;
    std::vector<std::uint8_t> buffer(kBytesPerPixel * static_cast<std::size_t>(work.width) *
                                     static_cast<std::size_t>(work.height));
    kernel(buffer.data(), work);
  });
}

struct Speckles {
  std::int32_t max_size, max_diff;
  Thresholds table;
  Map map;
  std::uint16_t invalid_value;
};

using SpeckleKernel = void(std::uint8_t* buffer, const Work& work, const Speckles& s);

void soft_filter(std::uint8_t* buffer, const Work& work, const Speckles& s) {
  depth_api_softfilter(buffer, work.pixels, s.map.limits, work.width, work.height, s.table.entries,
                       s.table.shift, s.table.size, s.max_diff, s.max_size, s.map.cols, s.map.rows,
                       s.invalid_value, s.map.limits == nullptr);
}

void soft_filter_pyramid(std::uint8_t* buffer, const Work& work, const Speckles& s) {
  const Thresholds& table = s.table;
  const Map& map = s.map;
  if (table.entries != nullptr && map.limits != nullptr) {
    filterSpecklePyramid_lut(buffer, work.pixels, map.limits, work.width, work.height, table.entries,
                             table.shift, table.size, map.cols, map.rows, s.invalid_value);
  } else if (table.entries != nullptr) {
    softfilterPyramid_lut(buffer, work.pixels, work.width, work.height, table.entries, table.shift,
                          table.size, s.max_size, s.invalid_value);
  } else if (map.limits != nullptr) {
    filterSpecklePyramid(buffer, work.pixels, map.limits, work.width, work.height, s.max_diff, map.cols,
                         map.rows, s.invalid_value);
  } else {
    softfilterPyramid(buffer, work.pixels, work.width, work.height, s.max_diff, s.max_size,
                      s.invalid_value);
  }
}

template <SpeckleKernel kernel>
Image remove_speckles(const Image& depth, std::int64_t max_size, const Table& max_size_map,
                      std::int64_t max_diff, const Table& lut, std::int64_t lut_shift,
                      std::int64_t invalid_value) {
  const Speckles speckles = {int32("max_size", max_size), int32("max_diff", max_diff),
                             thresholds_of(lut, lut_shift), fitting_map(max_size_map, depth),
                             narrow<std::uint16_t>("invalid_value", invalid_value)};
  return filtered_with_buffer(
      depth, [&](std::uint8_t* buffer, const Work& work) { kernel(buffer, work, speckles); });
}

/// Those that know neither tables nor maps.
template <auto* kernel>
Image remove_plain_speckles(const Image& depth, std::int64_t max_size, std::int64_t max_diff,
                            std::int64_t invalid_value) {
  const std::int32_t size = int32("max_size", max_size), diff = int32("max_diff", max_diff);
  const auto invalid = narrow<std::uint16_t>("invalid_value", invalid_value);
  return filtered_with_buffer(depth, [=](std::uint8_t* buffer, const Work& work) {
    kernel(buffer, work.pixels, work.width, work.height, diff, size, invalid);
  });
}

Image downsample(const Image& depth) {
  constexpr int kMostSide = 32767;
  if (depth.ndim() != 2) refuse("an image has rows and columns");
  for (const py::ssize_t side : {depth.shape(0), depth.shape(1)}) {
    if (side < 2 || side > kMostSide)
      refuse(kit::concat("the image has a side of ", side, "; expected 2 to 32767"));
  }
  Image half({depth.shape(0) / 2, depth.shape(1) / 2});
  downSample(depth.data(), half.mutable_data(), int32("width", depth.shape(1)),
             int32("height", depth.shape(0)));
  return half;
}

Image upsample(const Image& full, const Image& half, std::int64_t max_diff) {
  const std::int32_t diff = int32("max_diff", max_diff);
  if (full.ndim() != 2 || half.ndim() != 2 || full.shape(0) != 2 * half.shape(0) ||
      full.shape(1) != 2 * half.shape(1))
    refuse("full is not twice the size of half");
  const std::uint16_t* const small = half.data();
  return filtered(full, [=](const Work& work) {
    upSample_new(work.pixels, small, work.width / 2, work.height / 2, diff);
  });
}

}  // namespace

void bind_kernels(py::module_& module) {
  using py::arg;
  module.def("fill_holes", &fill_holes, arg("depth"), arg("mode"));
  module.def("horizontal_margin", &horizontal_margin, arg("depth"), arg("margin"), arg("limit"));
  module.def("margin", &margin, arg("depth"), arg("margin_x"), arg("margin_y"), arg("limit_x"),
             arg("limit_y"));
  module.def("margin_asym", &margin_asym, arg("depth"), arg("margin_large"), arg("margin_small"),
             arg("margin_y"), arg("limit_x"), arg("limit_y"));
  module.def("margin_with_chamfer", &margin_with_chamfer, arg("depth"), arg("margin_y"), arg("limit_x"),
             arg("limit_y"), arg("chamfer"));
  module.def("chamfer", &chamfer, arg("span"), arg("count"), arg("corner_first"), arg("base"),
             arg("corner_second"), arg("radius"));
  module.def("spatial", &spatial, arg("depth"), arg("lut"), arg("lut_shift"), arg("disp_diff"),
             arg("magnitude"), arg("radius"), arg("horizontal"), arg("vertical"), arg("alpha"));
  module.def("temporal", &temporal, arg("depth"), arg("history"), arg("diff_scale"), arg("weight"));
  module.def("remove_speckles", &remove_speckles<soft_filter>, arg("depth"), arg("max_size"),
             arg("max_size_map"), arg("max_diff"), arg("lut"), arg("lut_shift"), arg("invalid_value"));
  module.def("remove_speckles_pyramid", &remove_speckles<soft_filter_pyramid>, arg("depth"),
             arg("max_size"), arg("max_size_map"), arg("max_diff"), arg("lut"), arg("lut_shift"),
             arg("invalid_value"));
  module.def("remove_speckles_full", &remove_plain_speckles<Softfilter_new>, arg("depth"),
             arg("max_size"), arg("max_diff"), arg("invalid_value"));
  module.def("remove_speckles_half", &remove_plain_speckles<softfilterOpt>, arg("depth"), arg("max_size"),
             arg("max_diff"), arg("invalid_value"));
  module.def("downsample", &downsample, arg("depth"));
  module.def("upsample", &upsample, arg("full"), arg("half"), arg("max_diff"));
}

}  // namespace zvpython
