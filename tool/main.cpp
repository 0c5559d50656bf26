#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/common/suggestions.h"

namespace {

// Exit statuses.
constexpr int kRun = 1;    // something went wrong while doing what was asked
constexpr int kUsage = 2;  // what was asked makes no sense

struct Arguments {
  std::optional<std::string> plugin;
  bool json = false;
  std::string filter;
  zvfilter::RunOptions run;
  zvfilter::CameraCommandOptions camera;
};

kit::Plugin open_plugin(const std::optional<std::string>& file) {
  if (file) return kit::Plugin(*file);
  const auto own = [] {
    try {
      return kit::Plugin::default_file();
    } catch (const kit::Error& problem) {
      kit::fail(problem.what(), "; name one with --plugin PATH");
    }
  };
  return kit::Plugin(own());
}

/// Says what the command line should have been.
[[noreturn]] void refuse(const CLI::App& app, const CLI::ParseError& problem) {
  if (app.get_subcommands().empty() && !app.remaining().empty()) {
    const std::string unknown = app.remaining().front();
    const bool option = unknown.starts_with('-');
    const std::vector<std::string> options = {"--help", "--version", "--plugin"};
    const std::vector<std::string> commands = {"list", "schema", "run", "camera"};
    kit::refuse(option ? "unknown option " : "unknown command ", unknown, "; ",
                kit::suggest(unknown, option ? options : commands));
  }
  const std::string command =
      app.get_subcommands().empty() ? "" : app.get_subcommands().front()->get_name() + ' ';
  kit::refuse(problem.what(), "; see zvfilter ", command, "--help");
}

int run_program(int argc, char** argv) {
  CLI::App app("Lists the filters of the plug-in and runs chains of them on depth images.", "zvfilter");
  Arguments arguments;
  app.set_version_flag("--version", "zvfilter " ZVFILTER_VERSION);
  app.add_option("--plugin", arguments.plugin, "The plug-in to load instead of the program's own")
      ->type_name("PATH");
  app.set_config("--config", "", "Options from an INI or TOML file; [run] heads those of run")
      ->type_name("FILE");
  app.allow_config_extras(CLI::config_extras_mode::error);
  app.require_subcommand(1);
  app.fallthrough();
  CLI::App* list = app.add_subcommand("list", "List the filters and their parameters");
  list->add_flag("--json", arguments.json, "As JSON");
  CLI::App* schema = app.add_subcommand("schema", "Print a filter's configuration schema as it is");
  schema->add_option("NAME", arguments.filter, "The filter")->required()->type_name("");
  CLI::App* run = app.add_subcommand("run", "Run a chain of filters on a sequence of images");
  zvfilter::describe_run(*run, arguments.run);
  CLI::App* camera = app.add_subcommand("camera",
                                        "Write disparity frames of a virtual stereo camera, its "
                                        "parameters (camera.json) and the true depth in "
                                        "millimetres (truth/)");
  zvfilter::describe_camera(*camera, arguments.camera);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& wanted) {
    return app.exit(wanted);
  } catch (const CLI::ParseError& problem) {
    refuse(app, problem);
  } catch (const kit::Error&) {
    // The values of options are read first, but who asks for help gets it.
    for (const CLI::App* command : app.get_subcommands()) {
      if (command->get_help_ptr()->count() > 0) return app.exit(CLI::CallForHelp());
    }
    throw;
  }
  if (list->parsed()) {
    zvfilter::list_command(open_plugin(arguments.plugin), arguments.json, std::cout);
  } else if (schema->parsed()) {
    zvfilter::schema_command(open_plugin(arguments.plugin), arguments.filter, std::cout);
  } else if (run->parsed()) {
    zvfilter::run_command(open_plugin(arguments.plugin), arguments.run, std::cout, std::cerr);
  } else {
    zvfilter::camera_command(arguments.camera, std::cout);
  }
  std::cout.flush();
  if (!std::cout) kit::fail("standard output cannot be written");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run_program(argc, argv);
  } catch (const kit::Error& problem) {
    std::cerr << "zvfilter: " << problem.what() << '\n';
    if (problem.kind() == kit::Error::Kind::bad_request) return kUsage;
  } catch (const std::bad_alloc&) {
    std::cerr << "zvfilter: out of memory\n";
  } catch (const std::exception& problem) {
    std::cerr << "zvfilter: " << kit::printable(problem.what()) << '\n';
  }
  return kRun;
}
