#include <exception>
#include <iostream>
#include <malloc.h>
#include <new>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/plugin/plugin.h"
#include "run_report.h"

namespace {

// Exit statuses.
constexpr int kRun = 1;        // something went wrong while doing what was asked
constexpr int kUsage = 2;      // what was asked makes no sense
constexpr int kStopped = 130;  // as a shell says it of a program that a signal ended

struct Arguments {
  std::optional<std::string> plugin;
  bool json = false;
  std::string filter;
  std::string preset;
  zvfilter::RunOptions run;
  zvfilter::TuneOptions tune;
  zvfilter::AdviseOptions advise;
  zvfilter::CameraCommandOptions camera;
  std::vector<std::string> chains;
  zvfilter::ChainConvertOptions convert;
};

kit::FilterLibrary open_plugin(const std::optional<std::string>& file) {
  if (file) return kit::load_plugin(*file);
  const auto own = [] {
    try {
      return kit::default_plugin_file();
    } catch (const kit::Error& problem) {
      kit::fail(problem.what(), "; name one with --plugin PATH");
    }
  };
  return kit::load_plugin(own());
}

/// Says what the command line should have been.
[[noreturn]] void refuse(const CLI::App& app, const CLI::ParseError& problem) {
  if (app.get_subcommands().empty() && !app.remaining().empty()) {
    const std::string unknown = app.remaining().front();
    const bool option = unknown.starts_with('-');
    const std::vector<std::string> options = {"--help", "--version", "--plugin"};
    const std::vector<std::string> commands = {"list",  "help",   "presets", "schema", "run",
                                               "bench", "advise", "tune",    "chain",  "camera"};
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
  CLI::App* help =
      app.add_subcommand("help", "Say what a filter does, when to use it and what its parameters mean");
  help->add_option("FILTER", arguments.filter, "The filter; without it all of them, in a line each")
      ->type_name("");
  CLI::App* presets = app.add_subcommand("presets", "List the chains for common purposes, or print one");
  presets->add_option("NAME", arguments.preset, "The preset to print, as a chain file")->type_name("");
  CLI::App* schema = app.add_subcommand("schema", "Print a filter's configuration schema as it is");
  schema->add_option("NAME", arguments.filter, "The filter")->required()->type_name("");
  CLI::App* run = app.add_subcommand("run", "Run a chain of filters on a sequence of images");
  zvfilter::describe_run(*run, arguments.run);
  CLI::App* bench = app.add_subcommand("bench", "Measure how many frames a second a run makes");
  zvfilter::describe_bench(*bench, arguments.run);
  CLI::App* tune =
      app.add_subcommand("tune", "Try chains of filters on a sequence of images in a browser");
  zvfilter::describe_tune(*tune, arguments.tune);
  CLI::App* advise = app.add_subcommand("advise", "Find filters and values that suit a recording");
  zvfilter::describe_advise(*advise, arguments.advise);
  CLI::App* chain = app.add_subcommand("chain", "Check, show and convert chains of filters");
  chain->require_subcommand(1);
  CLI::App* check = chain->add_subcommand("check", "Say what is wrong with chains");
  check->add_option("CHAIN", arguments.chains, "Chain files or texts of steps")
      ->required()
      ->type_name("");
  CLI::App* show = chain->add_subcommand("show", "Print the steps of a chain with all their values");
  show->add_option("CHAIN", arguments.convert.source, "A chain file or the text of steps")
      ->required()
      ->type_name("");
  CLI::App* convert =
      chain->add_subcommand("convert", "Turn a chain into a chain file or the text of its steps");
  zvfilter::describe_chain_convert(*convert, arguments.convert);
  const CLI::App* chain_schema = chain->add_subcommand("schema", "Print the JSON Schema of chain files");
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
  } else if (help->parsed()) {
    zvfilter::help_command(open_plugin(arguments.plugin), arguments.filter, std::cout);
  } else if (presets->parsed()) {
    zvfilter::presets_command(arguments.preset, std::cout);
  } else if (schema->parsed()) {
    zvfilter::schema_command(open_plugin(arguments.plugin), arguments.filter, std::cout);
  } else if (run->parsed()) {
    arguments.run.report.command = zvfilter::command_text({argv, argv + argc});
    zvfilter::run_command(open_plugin(arguments.plugin), arguments.run, std::cout, std::cerr);
  } else if (bench->parsed()) {
    zvfilter::bench_command(open_plugin(arguments.plugin), arguments.run, std::cout);
  } else if (tune->parsed()) {
    arguments.tune.words.assign(argv + 1, argv + argc);
    zvfilter::tune_command(open_plugin(arguments.plugin), arguments.tune, std::cout, std::cerr);
  } else if (advise->parsed()) {
    arguments.advise.run.report.command = zvfilter::command_text({argv, argv + argc});
    zvfilter::advise_command(open_plugin(arguments.plugin), arguments.advise, std::cout, std::cerr);
  } else if (check->parsed()) {
    zvfilter::chain_check_command(open_plugin(arguments.plugin), arguments.chains, std::cout);
  } else if (show->parsed()) {
    zvfilter::chain_show_command(open_plugin(arguments.plugin), arguments.convert.source, std::cout);
  } else if (convert->parsed()) {
    zvfilter::chain_convert_command(open_plugin(arguments.plugin), arguments.convert, std::cout);
  } else if (chain_schema->parsed()) {
    zvfilter::chain_schema_command(open_plugin(arguments.plugin), std::cout);
  } else {
    zvfilter::camera_command(arguments.camera, std::cout);
  }
  std::cout.flush();
  if (!std::cout) kit::fail("standard output cannot be written");
  return 0;
}

/// Memory of one frame serves the next: it is neither given back nor taken anew, page by page.
void keep_memory() {
  mallopt(M_MMAP_THRESHOLD, 32 << 20);  // the most that is taken
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_TOP_PAD, 16 << 20);
}

}  // namespace

int main(int argc, char** argv) {
  keep_memory();
  try {
    return run_program(argc, argv);
  } catch (const kit::Error& problem) {
    std::cerr << "zvfilter: " << problem.what() << '\n';
    if (problem.kind() == kit::Error::Kind::bad_request) return kUsage;
  } catch (const zvfilter::Stopped& end) {
    std::cerr << "zvfilter: " << end.what() << '\n';
    return kStopped;
  } catch (const std::bad_alloc&) {
    std::cerr << "zvfilter: out of memory\n";
  } catch (const std::exception& problem) {
    std::cerr << "zvfilter: " << kit::printable(problem.what()) << '\n';
  }
  return kRun;
}
