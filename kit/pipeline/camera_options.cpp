#include "kit/pipeline/camera_options.h"

#include <algorithm>
#include <iomanip>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/image/image.h"

namespace kit {

namespace {

template <auto parse, auto field>
bool set(CameraRequest& request, std::string_view text) {
  const auto value = parse(text);
  auto& target = request.config.*field;
  if (value) target = static_cast<std::remove_reference_t<decltype(target)>>(*value);
  return value.has_value();
}

template <auto parse, int least, int most>
auto within(std::string_view text) {
  const auto value = parse(text);
  return value && *value >= least && *value <= most ? value : std::nullopt;
}

bool set_frames(CameraRequest& request, std::string_view text) {
  const auto frames = within<parse_integer, 1, 10000>(text);  // four digits in the names of files
  request.frames = static_cast<std::size_t>(frames.value_or(0));
  return frames.has_value();
}

bool set_size(CameraRequest& request, std::string_view text) {
  const auto size = parse_size(text);
  if (!size) return false;
  request.config.width = size->width;
  request.config.height = size->height;
  return true;
}

template <auto field>
bool set_fault(CameraRequest& request, std::string_view text) {
  const auto value = within<parse_number, 0, 1000>(text);
  if (value) request.config.faults.*field = static_cast<float>(*value);
  return value.has_value();
}

bool set_motion(CameraRequest& request, std::string_view text) {
  using devhost::Motion;
  constexpr std::pair<std::string_view, Motion> all[] = {
      {"still", Motion::still}, {"objects", Motion::objects}, {"camera", Motion::camera}};
  for (const auto& [name, motion] : all) {
    if (name != text) continue;
    request.config.motion = motion;
    return true;
  }
  return false;
}

bool set_mono(CameraRequest& request, std::string_view) { return request.mono = true; }

const CameraOption* option_named(std::string_view name) {
  for (const CameraOption& option : camera_options()) {
    if (option.name == name) return &option;
  }
  return nullptr;
}

/// Refuses the setting of the field that the camera complains of.
[[noreturn]] void fail_camera(const std::vector<CameraSetting>& settings, const std::string& problem) {
  for (const CameraSetting& setting : settings) {
    const auto fields = split(option_named(setting.name)->fields, ' ');
    for (const std::string_view field : fields) {
      const std::string start = concat("camera ", field, ' ');
      if (!problem.starts_with(start)) continue;
      // Where the option sets one field, its name says enough.
      const std::string named = fields.size() > 1 ? concat(field, ' ') : "";
      refuse(setting.typed, ": ", named, problem.substr(start.size()));
    }
  }
  refuse(problem);
}

}  // namespace

const std::vector<CameraOption>& camera_options() {
  using Config = devhost::CameraConfig;
  constexpr auto set_seed = set<parse_unsigned, &Config::seed>;
  constexpr auto set_pack_mode = set<within<parse_integer, 1, 4>, &Config::pack_mode>;
  constexpr auto set_bits = set<within<parse_integer, 0, 255>, &Config::bit_size>;
  constexpr auto set_format = set<parse_integer, &Config::format>;
  constexpr auto set_correction = set<parse_integer, &Config::disparity_correction>;
  constexpr auto set_baseline = set<within<parse_number, 0, 1000000>, &Config::baseline>;
  constexpr auto set_fx = set<parse_number, &Config::fx>;
  using Faults = devhost::CameraFaults;
  constexpr auto set_texture = set<within<parse_number, 0, 1000>, &Config::texture>;
  static const std::vector<CameraOption> all = {
      {"frames", "N", "How many, 10 by default", "1 to 10000", set_frames, ""},
      {"size", "WxH", "640x400 by default", "WIDTHxHEIGHT, for example 640x400", set_size,
       "width height"},
      {"seed", "N", "Of the scene and of the noise, 1 by default", "a whole number of at most 64 bits",
       set_seed, ""},
      {"pack-mode", "M", "1, 2 (default) or 3; 4 means one camera", "1 to 4", set_pack_mode, "pack_mode"},
      {"bits", "N", "Bits of a disparity code, chosen by pack mode and pixel format by default",
       "a whole number from 0 to 255", set_bits, "bit_size"},
      {"pixel-format", "F",
       "0 (16 bits a pixel, default) or 34 (a 12-bit code above 4 bits of confidence)", "0 or 34",
       set_format, "format"},
      {"correction", "N", "Disparity correction: metadata item 32, none by default",
       "a whole number of at most 32 bits", set_correction, "disparity_correction"},
      {"baseline", "MM", "Distance of the two viewpoints, 50 by default", "a number from 5 to 500",
       set_baseline, "baseline"},
      {"fx", "PIXELS", "Focal length, 0.7 times the width by default", "a number", set_fx, "fx"},
      {"motion", "WHAT",
       "What moves: still (nothing), objects (a box and a ball, default) or camera (they and the camera)",
       "still, objects or camera", set_motion, ""},
      {"texture", "SHARE", "Contrast of textures and projected dots, 1 by default",
       "a number from 0 to 1", set_texture, "texture"},
      {"noise", "PIXELS",
       "Deviation of the disparity 1 m away, more with the distance and at grazing angles; none by "
       "default",
       "a number from 0 to 4", set_fault<&Faults::noise>, "noise"},
      {"speckle", "SHARE", "Pixels that another projector spoils, in spots; none by default",
       "a number from 0 to 0.3", set_fault<&Faults::speckle>, "speckle"},
      {"dropouts", "SHARE",
       "How likely a pixel beside an edge or on a dark or shiny surface is missing; 0 by default",
       "a number from 0 to 1", set_fault<&Faults::dropouts>, "dropouts"},
      {"mono", "", "The parameters are those of one camera", "", set_mono, ""},
  };
  return all;
}

std::vector<CameraSetting> parse_camera_input(std::string_view input) {
  std::vector<CameraSetting> settings;
  const std::string_view list = input.substr(kCameraInput.size());
  if (list.empty()) return settings;
  for (const std::string_view text : split(list, ',')) {
    const auto equals = text.find('=');
    const std::string name(text.substr(0, equals));
    const CameraOption* option = option_named(name);
    if (option == nullptr) {
      std::vector<std::string> names;
      for (const CameraOption& known : camera_options()) names.emplace_back(known.name);
      refuse(kCameraInput, " unknown option \"", name, "\"; ", suggest(name, names));
    }
    const bool flag = option->value_name.empty(), has_value = equals != std::string_view::npos;
    if (flag == has_value) {
      refuse(kCameraInput, ' ', text, ": expected ", name, flag ? " alone" : "=",
             flag ? "" : option->value_name);
    }
    const auto same = [&](const CameraSetting& setting) { return setting.name == name; };
    if (std::any_of(settings.begin(), settings.end(), same)) {
      refuse(kCameraInput, ' ', name, " is given twice");
    }
    settings.push_back(
        {name, std::string(has_value ? text.substr(equals + 1) : ""), concat(kCameraInput, ' ', text)});
  }
  return settings;
}

CameraRequest make_camera_request(const std::vector<CameraSetting>& settings) {
  CameraRequest request;
  for (const CameraSetting& setting : settings) {
    const CameraOption& option = *option_named(setting.name);
    if (!option.set(request, setting.value)) {
      refuse(setting.typed, ": expected ", option.expected);
    }
  }
  if (request.mono || request.config.pack_mode == 4) request.config.dual = false;
  try {
    static_cast<void>(devhost::VirtualCamera(request.config));
  } catch (const std::invalid_argument& problem) {
    fail_camera(settings, problem.what());
  }
  return request;
}

std::string camera_frame_stem(std::size_t index) {
  return concat(kCameraFramePrefix, std::setfill('0'), std::setw(4), index);
}

}  // namespace kit
