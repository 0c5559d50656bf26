#ifndef KIT_INPUT_INPUT_H
#define KIT_INPUT_INPUT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "frame_traits.h"
#include "kit/json/json.h"

namespace kit {

/// What the frames of a sequence have in common, as far as it is known.
struct Input {
  hosts::FrameTraits traits;  ///< without pixels; a width and height of 0 are not known
  bool has_geometry = false;  ///< traits.disparity is known
  bool has_intrinsics = false;

  bool has_size() const { return traits.width > 0 && traits.height > 0; }
  static constexpr int kNominalIntegerBits = 8;  ///< of a disparity code
  /// Two cameras that are `baseline` millimetres apart, whose focal length is `fx` pixels.
  void set_stereo(double baseline, double fx);
};

/// Fields width, height, format, pixelType, bits, valueScale, intrinsics, disparity (the fields of ZVDisparityParam) and metadata
/// (by item number); all may be missing, but of the disparity the baseline and fx.
/// @throws Error naming the field that is wrong and what it may be
Input read_input(const JsonObject& object);
/// What is known, in that form; the size only where `with_size`.
Json input_json(const Input& input, bool with_size);

/// "depth", "disparity", "linear" or the host's number, as files and options give it.
std::optional<std::int32_t> parse_pixel_type(std::string_view text);
std::string pixel_type_name(std::int32_t pixel_type);

}  // namespace kit

#endif
