#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "failure.h"
#include "suggestions.h"

namespace {

using zvfilter::Failure;

struct Arguments {
  std::optional<std::string> plugin;
  bool json = false;
  std::string filter;
  zvfilter::RunOptions run;
  zvfilter::CameraCommandOptions camera;
};

constexpr const char* kRunFooter =
    "Two rows of the second table, which needs the true depth, are before and after a filter:\n"
    "  coverage      pixels that are valid\n"
    "  median, p95   absolute error over the valid pixels whose true depth is known\n"
    "  off > 5 %     those of them that miss it by more than 5 %\n"
    "  flicker       median change from one frame to the next where the true depth stays the same\n"
    "A dash: the frames are disparity, have changed their size, or there is nothing to measure.";

void describe_run(CLI::App& command, zvfilter::RunOptions& run) {
  command
      .add_option(
          "-f,--filter", run.filters,
          "NAME[:key=value,...], the next filter of the chain. Without a colon it is left as it is made; "
          "with one, parameters not named get their schema default")
      ->required()
      ->allow_extra_args(false)
      ->type_name("FILTER");
  command
      .add_option(
          "INPUT", run.inputs,
          "Images (.png, .pgm, .npy, .raw, .bin) or folders of them, in name order; or camera:, the "
          "virtual camera itself, with any options of zvfilter camera, such as "
          "camera:frames=30,size=640x400,pack-mode=1,mono")
      ->required()
      ->type_name("");
  command.add_option("-o,--output", run.output, "Folder for the results")->required()->type_name("DIR");
  command
      .add_option("--format", run.format, "Format of the results: png, pgm, npy, raw; else the input's")
      ->type_name("FORMAT");
  command.add_flag(
      "--preview", run.preview,
      "Also write a colour picture of before and after, from near in blue to far in red: both in one "
      "range or, where their pixel types differ, each in its own");
  command.add_option("--size", run.size, "Size of raw files")->type_name("WxH");
  command
      .add_option(
          "--camera", run.camera,
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
  command.add_option("--value-scale", run.value_scale, "Millimetres a unit, 1 by default")
      ->type_name("NUMBER");
  command.add_option("--bits", run.bits, "Bits of a pixel, 16 by default")->type_name("N");
  command
      .add_option("--pixel-type", run.pixel_type,
                  "depth (default), disparity, linear or the host's number")
      ->type_name("TYPE");
  command.add_flag("--frame-set", run.frame_set, "Hand the frames over in frame sets");
  command.add_option("--baseline", run.baseline, "Distance of the two viewpoints in millimetres")
      ->type_name("NUMBER");
  command.add_option("--fx", run.fx, "Focal length in pixels")->type_name("NUMBER");
}

void describe_camera(CLI::App& command, zvfilter::CameraCommandOptions& camera) {
  command.add_option("-o,--output", camera.output, "Folder for the frames, camera.json and truth/")
      ->required()
      ->type_name("DIR");
  for (const zvfilter::CameraOption& option : zvfilter::camera_options()) {
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

int run_program(int argc, char** argv) {
  CLI::App app("Lists the filters of the plug-in and runs chains of them on depth images.", "zvfilter");
  Arguments arguments;
  app.set_version_flag("--version", "zvfilter " ZVFILTER_VERSION);
  app.add_option("--plugin", arguments.plugin, "The plug-in to load instead of the program's own")
      ->type_name("PATH");
  app.require_subcommand(1);
  app.fallthrough();
  CLI::App* list = app.add_subcommand("list", "List the filters and their parameters");
  list->add_flag("--json", arguments.json, "As JSON");
  CLI::App* schema = app.add_subcommand("schema", "Print a filter's configuration schema as it is");
  schema->add_option("NAME", arguments.filter, "The filter")->required()->type_name("");
  CLI::App* run = app.add_subcommand("run", "Run a chain of filters on a sequence of images");
  describe_run(*run, arguments.run);
  CLI::App* camera = app.add_subcommand("camera",
                                        "Write disparity frames of a virtual stereo camera, its "
                                        "parameters (camera.json) and the true depth in "
                                        "millimetres (truth/)");
  describe_camera(*camera, arguments.camera);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& wanted) {
    return app.exit(wanted);
  } catch (const CLI::ParseError& problem) {
    if (app.get_subcommands().empty() && !app.remaining().empty()) {
      const std::string unknown = app.remaining().front();
      const bool option = unknown.starts_with('-');
      zvfilter::fail_usage(
          (option ? "unknown option " : "unknown command ") + unknown + "; " +
          zvfilter::suggest(unknown, option
                                         ? std::vector<std::string>{"--help", "--version", "--plugin"}
                                         : std::vector<std::string>{"list", "schema", "run", "camera"}));
    }
    const std::string command =
        app.get_subcommands().empty() ? "" : app.get_subcommands().front()->get_name() + ' ';
    zvfilter::fail_usage(std::string(problem.what()) + "; see zvfilter " + command + "--help");
  }
  if (list->parsed()) zvfilter::list_command(arguments.plugin, arguments.json, std::cout);
  if (schema->parsed()) zvfilter::schema_command(arguments.plugin, arguments.filter, std::cout);
  if (run->parsed()) zvfilter::run_command(arguments.plugin, arguments.run, std::cout, std::cerr);
  if (camera->parsed()) zvfilter::camera_command(arguments.camera, std::cout);
  std::cout.flush();
  if (!std::cout) zvfilter::fail_run("standard output cannot be written");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run_program(argc, argv);
  } catch (const Failure& failure) {
    std::cerr << "zvfilter: " << failure.what() << '\n';
    return failure.status();
  } catch (const std::bad_alloc&) {
    std::cerr << "zvfilter: out of memory\n";
  } catch (const std::exception& problem) {
    std::cerr << "zvfilter: " << problem.what() << '\n';
  }
  return Failure::kRun;
}
