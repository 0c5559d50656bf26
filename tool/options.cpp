#include "options.h"

#include <cmath>
#include <functional>
#include <map>

#include <CLI/CLI.hpp>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"
#include "option_groups.h"

namespace zvfilter {

CLI::Validator expect(const std::string& what, std::function<bool(const std::string& text)> holds) {
  return CLI::Validator(
      [what, holds = std::move(holds)](const std::string& text) {
        return holds(text) ? std::string() : text + ": expected " + what;
      },
      "");
}

namespace {

constexpr const char* kRunFooter =
    "Two rows of the second table, which needs the true depth, are before and after a filter:\n"
    "  coverage      pixels that are valid\n"
    "  median, p95   absolute error over the valid pixels whose true depth is known\n"
    "  off > 5 %     those of them that miss it by more than 5 %\n"
    "  flicker       median change from one frame to the next where the true depth stays the same\n"
    "A dash: the frames are disparity, have changed their size, or there is nothing to measure.\n"
    "\n"
    "The table \"at rest\", for four frames or more, needs no truth: it takes the pixels that stay "
    "within their\n"
    "own noise before the chain, in windows of 16 frames:\n"
    "  pixels used   their share\n"
    "  flicker       median change from one frame to the next\n"
    "  noise         median of their deviations (1.4826 times the median distance from their median)\n"
    "\n"
    "Examples:\n"
    "  zvfilter run --preset still-scene camera:frames=30,size=640x400 -o out --preview\n"
    "  zvfilter run -f SpatialAdvancedFilter:alpha=0.3 -f HoleFillingFilter:hole_filling_mode=2 frames/ "
    "-o out\n"
    "  zvfilter run --preset moving-camera --set steady.enabled=false --camera camera.json frames/ -o "
    "out";

constexpr const char* kSyncHelp =
    "Wait for the storage after each file; without it after the last, and a power cut may leave others "
    "empty";

const CLI::Validator& positive() {
  static const CLI::Validator check = expect("a number above 0", [](const std::string& text) {
    double value = 0;
    return CLI::detail::lexical_cast(text, value) && value > 0 && std::isfinite(value);
  });
  return check;
}

std::optional<kit::DepthRange> parse_range(const std::string& text) {
  const auto ends = kit::split(text, ':');
  if (ends.size() != 2) return std::nullopt;
  const auto near = kit::parse_number(ends[0]), far = kit::parse_number(ends[1]);
  if (!near || !far || *near < 0 || *near >= *far) return std::nullopt;
  return kit::DepthRange{*near, *far};
}

void add_settings(CLI::App& command, std::vector<std::string>& settings) {
  command
      .add_option("--set", settings,
                  "Another value for a step of the chain, named by its tag, filter or number; "
                  "enabled=false switches it off")
      ->allow_extra_args(false)
      ->type_name("TAG.key=value");
}

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
            run.raw_order = order == "big" ? kit::ByteOrder::big : kit::ByteOrder::little;
          },
          "Byte order of raw images, read and written: little (default) or big")
      ->check(expect("little or big",
                     [](const std::string& order) { return order == "little" || order == "big"; }))
      ->type_name("ORDER");
  command.add_flag(
      "--metres", run.metres,
      "Floating-point .npy files hold metres; a pixel becomes metres x 1000 / value scale, rounded");
}

void add_report(CLI::App& command, ReportOptions& report) {
  CLI::Option* file =
      command.add_option("--report", report.file,
                         "Also write a page (HTML in one file) about the run: pictures before "
                         "and after, what each step changed, plots over the frames");
  file->type_name("FILE");
  command
      .add_option(
          "--report-frames", report.frames,
          "Frames the report shows in any case, by number from 0, beside the first, the last and the "
          "one that changed most")
      ->delimiter(',')
      ->needs(file)
      ->type_name("N,...");
  command
      .add_option("--against", report.against,
                  "Results of another run of the same inputs, for the report to set beside this one's")
      ->needs(file)
      ->type_name("DIR");
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

void describe_input_names(CLI::App& command, RunOptions& run) {
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
}

namespace {

/// The form of what comes out.
void describe_form(CLI::App& command, RunOptions& run) {
  command
      .add_option_function<std::string>(
          "--format", [&run](const std::string& name) { run.output.format = kit::codec_named(name); },
          "Format of the results: png, pgm, npy, raw, tiff; else the input's. Of standard input and "
          "output: "
          "raw, pgm or npy")
      ->check(expect("png, pgm, npy, raw or tiff",
                     [](const std::string& name) { return kit::codec_named(name) != nullptr; }))
      ->type_name("FORMAT");
  command
      .add_option_function<std::string>(
          "--compression",
          [&run](const std::string& name) {
            run.output.compression = name == "small" ? kit::Compression::small : kit::Compression::fast;
          },
          "Of PNG results: fast (default), or small, which takes many times as long")
      ->check(expect("fast or small",
                     [](const std::string& name) { return name == "fast" || name == "small"; }))
      ->type_name("KIND");
}

}  // namespace

void describe_source(CLI::App& command, RunOptions& run) {
  command
      .add_option("-j,--jobs", run.jobs, "Threads, all processors by default; the results are the same")
      ->check(CLI::Range(1, 1024).description(""))
      ->type_name("N");
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

namespace {

void describe_frames(CLI::App& command, RunOptions& run) {
  describe_chain(command, run);
  describe_input_names(command, run);
  describe_form(command, run);
  describe_source(command, run);
}

}  // namespace

void describe_run(CLI::App& command, RunOptions& run) {
  describe_frames(command, run);
  command
      .add_option("-o,--output", run.output.folder, "Folder for the results, or - for standard output")
      ->required()
      ->type_name("DIR");
  command.add_flag("--preview", run.output.preview,
                   "Also write a colour picture of before, after and the change, with legends in "
                   "millimetres; all pictures of a run have one range");
  command
      .add_option_function<std::string>(
          "--range",
          [&run](const std::string& text) { run.output.preview_settings.range = parse_range(text); },
          "Depth range of the pictures in millimetres; else that of the first frame but for the nearest "
          "and "
          "farthest fiftieth")
      ->check(expect("NEAR:FAR in millimetres, for example 400:3000",
                     [](const std::string& text) { return parse_range(text).has_value(); }))
      ->type_name("NEAR:FAR");
  command
      .add_option_function<std::string>(
          "--colors",
          [&run](const std::string& name) {
            run.output.preview_settings.colors = *kit::color_map_named(name);
          },
          "Colours of the pictures from near to far: turbo (default), viridis, grey")
      ->check(expect("turbo, viridis or grey",
                     [](const std::string& name) { return kit::color_map_named(name).has_value(); }))
      ->type_name("NAME");
  add_report(command, run.report);
  command.add_flag("--sync", run.output.sync, kSyncHelp);
  const auto choose = [&run](Existing existing) { return [&run, existing] { run.existing = existing; }; };
  CLI::Option* const resume = command.add_flag_callback(
      "--resume", choose(Existing::resume), "Keep the results that are there and make the others");
  command
      .add_flag_callback("--overwrite", choose(Existing::overwrite),
                         "Replace results that are there; all of them go when the first new one comes")
      ->excludes(resume);
  command.add_flag("--keep-going", run.keep_going,
                   "Pass over frames that fail, and list them at the end");
  command.footer(kRunFooter);
}

void describe_bench(CLI::App& command, RunOptions& run) { describe_frames(command, run); }

void describe_chain_convert(CLI::App& command, ChainConvertOptions& convert) {
  command.add_option("CHAIN", convert.source, "A chain file or the text of steps")
      ->required()
      ->type_name("");
  add_settings(command, convert.settings);
  command.add_flag("--text", convert.to_text, "As the text of steps, one a line, instead of JSON");
  command.add_option("-o,--output", convert.output, "File for the result instead of standard output")
      ->type_name("FILE");
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
