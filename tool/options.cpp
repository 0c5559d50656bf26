#include "options.h"

#include <CLI/CLI.hpp>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"

namespace zvfilter {

namespace {

constexpr const char* kRunFooter =
    "Two rows of the second table, which needs the true depth, are before and after a filter:\n"
    "  coverage      pixels that are valid\n"
    "  median, p95   absolute error over the valid pixels whose true depth is known\n"
    "  off > 5 %     those of them that miss it by more than 5 %\n"
    "  flicker       median change from one frame to the next where the true depth stays the same\n"
    "A dash: the frames are disparity, have changed their size, or there is nothing to measure.";

constexpr const char* kSyncHelp =
    "Wait for the storage after each file; without it after the last, and a power cut may leave others "
    "empty";

/// How an option's text is read: nothing where it is not what is expected.
template <typename Value>
struct Reading {
  std::optional<Value> (*parse)(const std::string& text);
  const char* expected;
};

template <typename Value, typename Target>
CLI::Option* add_value(CLI::App& command, const std::string& name, Target& target,
                       const Reading<Value>& reading, const std::string& help) {
  const auto read = [name, &target, reading](const std::string& text) {
    const auto value = reading.parse(text);
    if (!value) kit::refuse(name, " ", text, ": expected ", reading.expected);
    target = static_cast<typename Target::value_type>(*value);
  };
  return command.add_option_function<std::string>(name, read, help);
}

std::optional<double> parse_positive(const std::string& text) {
  const auto value = kit::parse_number(text);
  return value && *value > 0 ? value : std::nullopt;
}

std::optional<std::int32_t> parse_bits(const std::string& text) {
  const auto bits = kit::parse_integer(text);
  return bits && *bits >= 1 && *bits <= 16 ? bits : std::nullopt;
}

std::optional<std::int32_t> parse_pixel_type(const std::string& text) {
  if (text == "depth") return ZV_PIXEL_TYPE_DEPTH;
  if (text == "disparity") return ZV_PIXEL_TYPE_DISPARITY;
  if (text == "linear") return ZV_PIXEL_TYPE_LINEAR_DEPTH;
  return kit::parse_integer(text);
}

std::optional<const kit::Codec*> parse_format(const std::string& text) {
  const kit::Codec* codec = kit::codec_named(text);
  return codec != nullptr ? std::optional(codec) : std::nullopt;
}

constexpr Reading<double> kPositive = {parse_positive, "a number above 0"};
constexpr Reading<std::int32_t> kBits = {parse_bits, "1 to 16"};
constexpr Reading<std::int32_t> kPixelType = {parse_pixel_type,
                                              "depth, disparity, linear or the host's number"};
constexpr Reading<const kit::Codec*> kFormat = {parse_format, "png, pgm, npy or raw"};
constexpr Reading<kit::Size> kSize = {[](const std::string& text) { return kit::parse_size(text); },
                                      "WIDTHxHEIGHT, for example 640x480"};

}  // namespace

void describe_run(CLI::App& command, RunOptions& run) {
  const auto add_filters = [&run](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) run.chain.push_back(kit::parse_step(text));
  };
  command
      .add_option_function<std::vector<std::string>>(
          "-f,--filter", add_filters,
          "NAME[:key=value,...], the next filter of the chain. Without a colon it is left as it is made; "
          "with one, parameters not named get their schema default")
      ->required()
      ->allow_extra_args(false)
      ->type_name("FILTER");
  const auto add_inputs = [&run](const std::vector<std::string>& texts) {
    run.inputs = texts;
    for (const std::string& text : texts) {
      if (!text.starts_with(kit::kCameraInput)) continue;
      if (texts.size() > 1) kit::refuse(text, " has to be the only input");
      run.camera_input = kit::make_camera_request(kit::parse_camera_input(text));
    }
  };
  command
      .add_option_function<std::vector<std::string>>(
          "INPUT", add_inputs,
          "Images (.png, .pgm, .npy, .raw, .bin) or folders of them, in name order; or camera:, the "
          "virtual camera itself, with any options of zvfilter camera, such as "
          "camera:frames=30,size=640x400,pack-mode=1,mono")
      ->required()
      ->type_name("");
  command.add_option("-o,--output", run.output.folder, "Folder for the results")
      ->required()
      ->type_name("DIR");
  add_value(command, "--format", run.output.format, kFormat,
            "Format of the results: png, pgm, npy, raw; else the input's")
      ->type_name("FORMAT");
  command.add_flag(
      "--preview", run.output.preview,
      "Also write a colour picture of before and after, from near in blue to far in red: both in one "
      "range or, where their pixel types differ, each in its own");
  command.add_flag("--sync", run.output.sync, kSyncHelp);
  add_value(command, "--size", run.size, kSize, "Size of raw files")->type_name("WxH");
  command
      .add_option_function<std::string>(
          "--camera",
          [&run](const std::string& file) { run.attributes.camera = kit::read_camera_file(file); },
          "The camera.json that says what the frames carry beside their pixels: pixel type, bits, value "
          "scale, format, disparity parameters, intrinsics, metadata. Options below replace what it says")
      ->type_name("FILE");
  command
      .add_option(
          "--truth", run.truth,
          "Folder with the true depth in millimetres (0: not known), a file of the same name in any "
          "format for each input; camera: brings its own")
      ->type_name("DIR");
  command.footer(kRunFooter);
  kit::FrameAttributes& attributes = run.attributes;
  add_value(command, "--value-scale", attributes.value_scale, kPositive,
            "Millimetres a unit, 1 by default")
      ->type_name("NUMBER");
  add_value(command, "--bits", attributes.bits, kBits, "Bits of a pixel, 16 by default")->type_name("N");
  add_value(command, "--pixel-type", attributes.pixel_type, kPixelType,
            "depth (default), disparity, linear or the host's number")
      ->type_name("TYPE");
  command.add_flag_callback(
      "--frame-set", [&run] { run.handover = kit::Handover::frame_set; },
      "Hand the frames over in frame sets");
  add_value(command, "--baseline", attributes.baseline, kPositive,
            "Distance of the two viewpoints in millimetres")
      ->type_name("NUMBER");
  add_value(command, "--fx", attributes.fx, kPositive, "Focal length in pixels")->type_name("NUMBER");
}

void describe_camera(CLI::App& command, CameraCommandOptions& camera) {
  command.add_option("-o,--output", camera.output, "Folder for the frames, camera.json and truth/")
      ->required()
      ->type_name("DIR");
  command.add_flag("--sync", camera.sync, kSyncHelp);
  for (const kit::CameraOption& option : kit::camera_options()) {
    const std::string name(option.name), flag = "--" + name, help(option.help);
    if (option.value_name.empty()) {
      command.add_flag_callback(
          flag,
          [&camera, name, flag] {
            camera.settings.push_back({name, "", flag});
          },
          help);
      continue;
    }
    const auto keep = [&camera, name, flag](const std::string& value) {
      camera.settings.push_back({name, value, flag + ' ' + value});
    };
    command.add_option_function<std::string>(flag, keep, help)->type_name(std::string(option.value_name));
  }
}

}  // namespace zvfilter
