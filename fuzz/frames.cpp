#include "frames.h"

#include "cases/images.h"

namespace filterprocessor::fuzz {

namespace {

/// Mostly what fits, otherwise any bits.
template <typename T>
T any_of(Source& input, std::initializer_list<T> usual) {
  return input.one_in(16) ? input.number<T>() : input.pick(usual);
}

ZVDisparityParam any_disparity(Source& input) {
  if (input.one_in(16)) return input.number<ZVDisparityParam>();
  ZVDisparityParam p = {};
  p.isDualCamera = any_of<std::uint8_t>(input, {1, 1, 0});
  p.packMode = any_of<std::uint8_t>(input, {2, 1, 3, 4, 0, 5});
  p.bitSize = any_of<std::uint8_t>(input, {16, 16, 14, 12, 8, 17});
  p.dispIntPlace = any_of<std::int32_t>(input, {8, 8, 10, 0, 16});
  p.fx = any_of<double>(input, {600, 593.6, 0});
  p.baseline = any_of<float>(input, {50, 40.5f, 0});
  p.zpd = any_of<double>(input, {1000, 500, 0});
  p.unit = any_of<float>(input, {1, 0.1f, 10});
  p.minDisparity = any_of<float>(input, {0, 64, 96.5f});
  p.dispOffset = any_of<float>(input, {0, 0.37f, -5});
  p.invalidDisp = any_of<std::int32_t>(input, {0, 20, -1});
  return p;
}

Sides any_frame_sides(Source& input) {
  if (input.one_in(8)) {
    // Sizes that have a form of their own in the speckle kernels.
    const auto side = input.pick<std::size_t>({160, 320, 424, 640, 1280, 266});
    const auto other = input.size(1, 8);
    return input.flag() ? Sides{other, side} : Sides{side, other};
  }
  return {input.size(0, 40), input.size(0, 40)};
}

devhost::FrameTraits any_traits(Source& input) {
  const Sides sides = any_frame_sides(input);
  devhost::FrameTraits traits;
  traits.type = any_of<std::int32_t>(input, {ZV_FRAME_TYPE_DEPTH});
  traits.format = any_of<std::int32_t>(input, {0, 0, ZV_FORMAT_PACKED_CODE});
  traits.width = static_cast<std::uint32_t>(sides.width);
  traits.height = static_cast<std::uint32_t>(sides.height);
  traits.pixel_type =
      any_of<std::int32_t>(input, {ZV_PIXEL_TYPE_DEPTH, ZV_PIXEL_TYPE_DISPARITY, ZV_PIXEL_TYPE_DISPARITY,
                                   ZV_PIXEL_TYPE_LINEAR_DEPTH, -1});
  traits.bits = any_of<std::uint8_t>(input, {16, 16, 14, 12, 8, 0});
  traits.value_scale = any_of<float>(input, {1, 0.1f, 0.125f, 0, -1});
  traits.disparity = any_disparity(input);
  traits.intrinsic = {600, 600, 20, 20, 40, 40};
  if (input.flag()) {
    traits.metadata[ZV_METADATA_DISPARITY_CORRECTION] = any_of<std::int64_t>(input, {8, -8, 0, 4});
  }
  traits.pixels = any_pixels(input, sides);
  return traits;
}

/// More or fewer pixels than described, or described.
void break_size(Source& input, devhost::FrameTraits& traits) {
  if (input.flag()) return traits.pixels.resize(input.size(0, 4000));
  const auto claim = [&](std::uint32_t& side) {
    side = any_of<std::uint32_t>(input, {side, 0xffffffff, 0x80000000, 65536, 70000, 32768});
  };
  claim(traits.width);
  claim(traits.height);
}

void add_bytes(std::string& content, const void* bytes, std::size_t size) {
  if (size != 0) content.append(static_cast<const char*>(bytes), size);
}

void add_values(std::string& content, const auto&... values) {
  (add_bytes(content, &values, sizeof values), ...);
}

void add_frame(std::string& content, const zv_frame_t* frame) {
  const devhost::FrameTraits f = devhost::inspect(frame);
  const devhost::ProfileTraits p = devhost::inspect_profile(frame);
  add_values(content, f.type, f.format, f.width, f.height, f.pixel_type, f.bits, f.value_scale, p.format,
             p.width, p.height, p.intrinsic, p.disparity);
  for (const auto& [item, value] : f.metadata) add_values(content, item, value);
  add_bytes(content, zv_frame_get_data(frame, nullptr), zv_frame_get_data_size(frame, nullptr));
}

}  // namespace

devhost::Frame any_frame(Source& input) {
  devhost::Frame frame;
  if (input.one_in(32)) {
    // Without a profile, and thus without a size.
    frame.reset(zv_create_frame(ZV_FRAME_TYPE_DEPTH, 0, static_cast<std::uint32_t>(input.integer(0, 100)),
                                nullptr));
    zv_video_frame_set_pixel_type(frame.get(), input.pick({0, 2, 4}), nullptr);
  } else {
    devhost::FrameTraits traits = any_traits(input);
    if (input.one_in(16)) break_size(input, traits);
    frame = devhost::make_frame(traits);
    if (input.one_in(16)) {
      devhost::ProfileTraits profile = devhost::inspect_profile(frame.get());
      profile.width += 1;
      profile.disparity = any_disparity(input);
      devhost::attach_profile(frame.get(), profile);
    }
    if (input.one_in(32)) {
      const std::string odd(2 * input.size(0, 100) + 1, 'x');
      zv_frame_update_data(frame.get(), odd.data(), static_cast<std::uint32_t>(odd.size()), nullptr);
    }
  }
  if (!input.one_in(4)) return frame;
  return devhost::make_frame_set(input.one_in(8) ? nullptr : std::move(frame));
}

std::string content_of(const zv_frame_t* frame) {
  std::string content;
  add_frame(content, frame);
  const devhost::Frame depth = devhost::depth_frame_of(frame);
  if (depth.get() != frame) add_frame(content, depth.get());
  return content;
}

}  // namespace filterprocessor::fuzz
