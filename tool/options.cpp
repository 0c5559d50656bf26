#include "options.h"

#include <cmath>
#include <functional>
#include <map>

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

/// Refuses texts and says what is expected instead. The text in --help stays that of type_name().
CLI::Validator expect(const std::string& what, std::function<bool(const std::string& text)> holds) {
  return CLI::Validator(
      [what, holds = std::move(holds)](const std::string& text) {
        return holds(text) ? std::string() : text + ": expected " + what;
      },
      "");
}

const CLI::Validator& positive() {
  static const CLI::Validator check = expect("a number above 0", [](const std::string& text) {
    double value = 0;
    return CLI::detail::lexical_cast(text, value) && value > 0 && std::isfinite(value);
  });
  return check;
}

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
  command
      .add_option_function<std::string>(
          "--format", [&run](const std::string& name) { run.output.format = kit::codec_named(name); },
          "Format of the results: png, pgm, npy, raw; else the input's")
      ->check(expect("png, pgm, npy or raw",
                     [](const std::string& name) { return kit::codec_named(name) != nullptr; }))
      ->type_name("FORMAT");
  command.add_flag(
      "--preview", run.output.preview,
      "Also write a colour picture of before and after, from near in blue to far in red: both in one "
      "range or, where their pixel types differ, each in its own");
  command.add_flag("--sync", run.output.sync, kSyncHelp);
  command
      .add_option_function<std::string>(
          "--size", [&run](const std::string& text) { run.size = kit::parse_size(text); },
          "Size of raw files")
      ->check(expect("WIDTHxHEIGHT, for example 640x480",
                     [](const std::string& text) { return kit::parse_size(text).has_value(); }))
      ->type_name("WxH");
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
  command.add_option("--value-scale", attributes.value_scale, "Millimetres a unit, 1 by default")
      ->check(positive())
      ->type_name("NUMBER");
  command.add_option("--bits", attributes.bits, "Bits of a pixel, 16 by default")
      ->check(CLI::Range(1, 16).description(""))
      ->type_name("N");
  const std::map<std::string, std::int32_t> pixel_types = {{"depth", ZV_PIXEL_TYPE_DEPTH},
                                                           {"disparity", ZV_PIXEL_TYPE_DISPARITY},
                                                           {"linear", ZV_PIXEL_TYPE_LINEAR_DEPTH}};
  command
      .add_option("--pixel-type", attributes.pixel_type,
                  "depth (default), disparity, linear or the host's number")
      ->transform(CLI::Transformer(pixel_types).description(""))
      ->check(expect("depth, disparity, linear or the host's number",
                     [](const std::string& text) {
                       std::int32_t code = 0;
                       return CLI::detail::lexical_cast(text, code);
                     }))
      ->type_name("TYPE");
  command.add_flag_callback(
      "--frame-set", [&run] { run.handover = kit::Handover::frame_set; },
      "Hand the frames over in frame sets");
  command.add_option("--baseline", attributes.baseline, "Distance of the two viewpoints in millimetres")
      ->check(positive())
      ->type_name("NUMBER");
  command.add_option("--fx", attributes.fx, "Focal length in pixels")
      ->check(positive())
      ->type_name("NUMBER");
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
