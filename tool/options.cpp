#include <cmath>
#include <functional>
#include <map>

#include <CLI/CLI.hpp>

#include "kit/common/error.h"
#include "kit/frame/camera_file.h"
#include "option_groups.h"

namespace zvfilter {

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

std::optional<kit::DepthRange> parse_range(const std::string& text) {
  const auto ends = kit::split(text, ':');
  if (ends.size() != 2) return std::nullopt;
  const auto near = kit::parse_number(ends[0]), far = kit::parse_number(ends[1]);
  if (!near || !far || *near < 0 || *near >= *far) return std::nullopt;
  return kit::DepthRange{*near, *far};
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

/// What goes in, the chain and the form of what comes out.
void describe_frames(CLI::App& command, RunOptions& run) {
  describe_chain(command, run);
  describe_sequence(command, run);
  describe_form(command, run);
  describe_jobs(command, run);
  command.add_flag_callback(
      "--frame-set", [&run] { run.handover = kit::Handover::frame_set; },
      "Hand the frames over in frame sets");
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

void describe_bench(CLI::App& command, RunOptions& run) {
  describe_frames(command, run);
  command.footer(
      "Each part's frames a second, with one thread and with as many as there are; the results are let "
      "go.\n"
      "\n"
      "Examples:\n"
      "  zvfilter bench --preset light frames/\n"
      "  zvfilter bench --preset moving-camera camera:frames=60,size=1280x720");
}

void describe_tune(CLI::App& command, TuneOptions& tune) {
  describe_chain(command, tune.run);
  describe_sequence(command, tune.run);
  command.add_option("--port", tune.port, "Port of the page's address; without it a free one")
      ->check(CLI::Range(0, 65535).description(""))
      ->type_name("N");
  command.add_flag("--open", tune.open, "Open the page in the browser");
  command.footer(
      "The page is for this machine only, and for who has its address. Ctrl-C ends it.\n"
      "With --chain FILE the page saves into that file, which need not exist yet.\n"
      "\n"
      "Examples:\n"
      "  zvfilter tune frames/ --open\n"
      "  zvfilter tune --preset still-scene camera:frames=60,size=640x400\n"
      "  zvfilter tune --chain chain.json frames/ --truth truth/");
}

void describe_chain_convert(CLI::App& command, ChainConvertOptions& convert) {
  command.add_option("CHAIN", convert.source, "A chain file or the text of steps")
      ->required()
      ->type_name("");
  add_settings(command, convert.settings);
  command.add_flag("--text", convert.to_text, "As the text of steps, one a line, instead of JSON");
  command.add_option("-o,--output", convert.output, "File for the result instead of standard output")
      ->type_name("FILE");
  command.footer(
      "Examples:\n"
      "  zvfilter chain convert 'TemporalFilter:weight=0.3; HoleFillingFilter:' -o chain.json\n"
      "  zvfilter chain convert --text chain.json");
}

void describe_camera(CLI::App& command, CameraCommandOptions& camera) {
  command.add_option("-o,--output", camera.output, "Folder for the frames, camera.json and truth/")
      ->required()
      ->type_name("DIR");
  command.add_flag("--sync", camera.sync, kSyncHelp);
  command.footer(
      "Examples:\n"
      "  zvfilter camera -o recording --frames 30\n"
      "  zvfilter camera -o recording --size 1280x720 --motion camera --noise 0.1 --seed 7");
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
