#include "option_groups.h"

#include <cmath>
#include <map>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"

namespace zvfilter {

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

void add_settings(CLI::App& command, std::vector<std::string>& settings) {
  command
      .add_option("--set", settings,
                  "Another value for a step of the chain, named by its tag, filter or number; "
                  "enabled=false switches it off")
      ->allow_extra_args(false)
      ->type_name("TAG.key=value");
}

namespace {

/// How files are found and read.
void describe_inputs(CLI::App& command, RunOptions& run) {
  const std::map<std::string, kit::FileOrder> orders = {{"name", kit::FileOrder::name},
                                                        {"natural", kit::FileOrder::natural},
                                                        {"time", kit::FileOrder::time}};
  command
      .add_option_function<std::string>(
          "--order", [&run, orders](const std::string& name) { run.selection.order = orders.at(name); },
          "Order of files: natural (default, f_2 before f_10), name (byte by byte), time (of their last "
          "change)")
      ->check(expect("name, natural or time",
                     [orders](const std::string& name) { return orders.contains(name); }))
      ->type_name("ORDER");
  command
      .add_option("--include", run.selection.include,
                  "Of folders, only files whose names fit, such as '*_depth.png'")
      ->allow_extra_args(false)
      ->type_name("PATTERN");
  command.add_option("--exclude", run.selection.exclude, "Of folders, no files whose names fit")
      ->allow_extra_args(false)
      ->type_name("PATTERN");
  const auto streamable = [](const std::string& name) {
    const kit::Codec* codec = kit::codec_named(name);
    return codec != nullptr && codec->header != nullptr;
  };
  command
      .add_option_function<std::string>(
          "--input-format",
          [&run](const std::string& name) { run.stream_format = kit::codec_named(name); },
          "Format of standard input, where it is not that of the results")
      ->check(expect("raw, pgm or npy", streamable))
      ->type_name("FORMAT");
  command
      .add_option_function<std::string>(
          "--endian",
          [&run](const std::string& order) {
            run.endian_said = true;
            run.output.raw_order = order == "big" ? kit::ByteOrder::big : kit::ByteOrder::little;
          },
          "Byte order of raw images, read and written: little (default) or big")
      ->check(expect("little or big",
                     [](const std::string& order) { return order == "little" || order == "big"; }))
      ->type_name("ORDER");
  command.add_flag(
      "--metres", run.metres,
      "Floating-point .npy files hold metres; a pixel becomes metres x 1000 / value scale, rounded");
}

}  // namespace

void describe_chain(CLI::App& command, RunOptions& run) {
  const auto add_filters = [&run](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) run.filters.push_back(kit::parse_step(text));
  };
  command
      .add_option_function<std::vector<std::string>>(
          "-f,--filter", add_filters,
          "[TAG=]NAME[:key=value,...], the next filter of the chain. Without a colon it is left as it is "
          "made; "
          "with one, parameters not named get their schema default")
      ->allow_extra_args(false)
      ->type_name("FILTER");
  command
      .add_option("--chain", run.chain, "All filters at once: a chain file or its text, instead of -f")
      ->excludes("--filter")
      ->type_name("CHAIN");
  command
      .add_option("--preset", run.preset, "A chain for a purpose, instead of -f; see zvfilter presets")
      ->excludes("--filter")
      ->excludes("--chain")
      ->type_name("NAME");
  add_settings(command, run.settings);
}

void describe_sequence(CLI::App& command, RunOptions& run) {
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
          "Images (.png, .pgm, .npy, .raw, .bin, .tif, .tiff), stacks of them, or folders, in natural "
          "order; "
          "- for standard input; or camera:, the "
          "virtual camera itself, with any options of zvfilter camera, such as "
          "camera:frames=30,size=640x400,pack-mode=1,mono")
      ->required()
      ->type_name("");
  command
      .add_option_function<std::string>(
          "--size", [&run](const std::string& text) { run.size = kit::parse_size(text); },
          "Size of raw images")
      ->check(expect("WIDTHxHEIGHT, for example 640x480",
                     [](const std::string& text) { return kit::parse_size(text).has_value(); }))
      ->type_name("WxH");
  describe_inputs(command, run);
  command
      .add_option_function<std::string>(
          "--camera",
          [&run](const std::string& file) {
            run.camera_said = true;
            if (file != "none") run.attributes.camera = kit::read_camera_file(file);
          },
          "The camera.json that says what the frames carry beside their pixels: pixel type, bits, value "
          "scale, format, disparity parameters, intrinsics, metadata; each may be missing. Options below "
          "replace what "
          "it says. Without this option, the camera.json beside the images; none: not that either")
      ->type_name("FILE");
  command
      .add_option(
          "--truth", run.truth,
          "Folder with the true depth in millimetres (0: not known), a file of the same name in any "
          "format for each input; camera: brings its own")
      ->type_name("DIR");
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
  command.add_option("--baseline", attributes.baseline, "Distance of the two viewpoints in millimetres")
      ->check(positive())
      ->type_name("NUMBER");
  command.add_option("--fx", attributes.fx, "Focal length in pixels")
      ->check(positive())
      ->type_name("NUMBER");
}

void describe_jobs(CLI::App& command, RunOptions& run) {
  command
      .add_option("-j,--jobs", run.jobs, "Threads, all processors by default; the results are the same")
      ->check(CLI::Range(1, 1024).description(""))
      ->type_name("N");
}

}  // namespace zvfilter
