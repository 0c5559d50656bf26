#include <cmath>

#include "chain.h"
#include "kit/common/error.h"

namespace zvfilter {

namespace {

constexpr std::uint32_t kMostSide = 32767;  // the intrinsics of a frame have sides of 16 bits with a sign

// The fields of zvf_geometry and of the host's record, which is packed: they can be read and written by name only.
#define GEOMETRY_FIELDS(PAIR)          \
  PAIR(zpd, zpd)                       \
  PAIR(zpps, zpps)                     \
  PAIR(baseline, baseline)             \
  PAIR(fx, fx)                         \
  PAIR(bits, bitSize)                  \
  PAIR(unit, unit)                     \
  PAIR(min_disparity, minDisparity)    \
  PAIR(pack_mode, packMode)            \
  PAIR(disparity_offset, dispOffset)   \
  PAIR(invalid_disparity, invalidDisp) \
  PAIR(integer_bits, dispIntPlace)     \
  PAIR(dual_camera, isDualCamera)

ZVDisparityParam disparity_of(const zvf_geometry& geometry) {
  ZVDisparityParam record = {};
#define PUT(own, host) record.host = geometry.own;
  GEOMETRY_FIELDS(PUT)
#undef PUT
  return record;
}

zvf_geometry geometry_of(const ZVDisparityParam& record) {
  zvf_geometry geometry = {};
#define TAKE(own, host) geometry.own = record.host;
  GEOMETRY_FIELDS(TAKE)
#undef TAKE
  return geometry;
}

#undef GEOMETRY_FIELDS

void expect(bool holds, const char* field, const char* expected) {
  if (!holds) kit::refuse_key(field, "the input's ", field, " is wrong; expected ", expected);
}

}  // namespace

kit::Input read_input(const zvf_input& input) {
  const auto side = [](std::uint32_t pixels) { return pixels >= 1 && pixels <= kMostSide; };
  expect(side(input.width), "width", "1 to 32767 pixels");
  expect(side(input.height), "height", "1 to 32767 pixels");
  expect(input.bits >= 1 && input.bits <= 16, "bits", "1 to 16");
  expect(input.value_scale > 0 && std::isfinite(input.value_scale), "value_scale", "millimetres above 0");
  kit::Input result;
  hosts::FrameTraits& traits = result.traits;
  traits.width = input.width;
  traits.height = input.height;
  traits.pixel_type = input.pixel_type;
  traits.bits = input.bits;
  traits.format = input.packed ? ZV_FORMAT_PACKED_CODE : 0;
  traits.value_scale = input.value_scale;
  if (input.has_correction) traits.metadata[ZV_METADATA_DISPARITY_CORRECTION] = input.correction;
  if (input.has_intrinsics) {
    const zvf_intrinsics& i = input.intrinsics;
    traits.intrinsic = {i.fx,
                        i.fy,
                        i.cx,
                        i.cy,
                        static_cast<std::int16_t>(input.width),
                        static_cast<std::int16_t>(input.height)};
    result.has_intrinsics = true;
  }
  if (input.has_geometry) {
    traits.disparity = disparity_of(input.geometry);
    result.has_geometry = true;
  }
  return result;
}

zvf_input input_record(const kit::Input& input) {
  const hosts::FrameTraits& traits = input.traits;
  zvf_input record = {};
  record.width = traits.width;
  record.height = traits.height;
  record.pixel_type = traits.pixel_type;
  record.bits = traits.bits;
  record.packed = traits.format == ZV_FORMAT_PACKED_CODE;
  record.value_scale = traits.value_scale;
  const auto correction = traits.metadata.find(ZV_METADATA_DISPARITY_CORRECTION);
  record.has_correction = correction != traits.metadata.end();
  if (record.has_correction) record.correction = correction->second;
  record.has_intrinsics = input.has_intrinsics;
  if (input.has_intrinsics) {
    const ZVCameraIntrinsic& i = traits.intrinsic;
    record.intrinsics = {i.fx, i.fy, i.cx, i.cy};
  }
  record.has_geometry = input.has_geometry;
  if (input.has_geometry) {
    record.geometry = geometry_of(traits.disparity);
  }
  return record;
}

zvf_view view_of(const zv_frame_t* frame, double milliseconds) {
  if (frame == nullptr) return {};
  const hosts::FrameTraits& traits = framehost::traits_of(frame);
  return {framehost::pixels_of(frame), traits.width, traits.height, traits.pixel_type, traits.bits,
          traits.value_scale,          milliseconds};
}

}  // namespace zvfilter

extern "C" {

zvf_input zvf_input_of(uint32_t width, uint32_t height) {
  kit::Input input;
  input.traits.width = width;
  input.traits.height = height;
  return zvfilter::input_record(input);
}

void zvf_input_set_stereo(zvf_input* input, double baseline, double fx) {
  kit::Input stereo;
  stereo.traits.bits = input->bits;
  stereo.set_stereo(baseline, fx);
  input->geometry = zvfilter::input_record(stereo).geometry;
  input->has_geometry = true;
}

}  // extern "C"
