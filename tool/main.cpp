#include <exception>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <new>
#include <utility>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/plugin/plugin.h"
#include "run_report.h"

namespace zvfilter {

namespace {

/// The command line: what it may say, and what is done of it.
class CommandLine {
 public:
  CommandLine(int argc, char** argv);
  /// @return the exit status
  int run();

 private:
  /// A command, and what it does once the words are read.
  CLI::App* add(CLI::App& parent, const char* name, const char* description,
                std::function<void()> action);
  void add_words();
  void add_frames();
  void add_chains();
  /// Says what the command line should have been.
  [[noreturn]] void refuse(const CLI::ParseError& problem) const;
  kit::FilterLibrary library() const;
  std::vector<std::string> words() const { return {argv_, argv_ + argc_}; }

  int argc_;
  char** argv_;
  CLI::App app_;
  std::vector<std::pair<const CLI::App*, std::function<void()>>> actions_;
  std::optional<std::string> plugin_;
  bool json_ = false;
  std::string filter_;
  std::string preset_;
  RunOptions run_;
  TuneOptions tune_;
  AdviseOptions advise_;
  CameraCommandOptions camera_;
  std::vector<std::string> chains_;
  ChainConvertOptions convert_;
};

CommandLine::CommandLine(int argc, char** argv)
    : argc_(argc),
      argv_(argv),
      app_("Lists the filters of the plug-in and runs chains of them on depth images.", "zvfilter") {
  app_.set_version_flag("--version", "zvfilter " ZVFILTER_VERSION);
  app_.add_option("--plugin", plugin_, "The plug-in to load instead of the program's own")
      ->type_name("PATH");
  app_.set_config("--config", "", "Options from an INI or TOML file; [run] heads those of run")
      ->type_name("FILE");
  app_.allow_config_extras(CLI::config_extras_mode::error);
  app_.require_subcommand(1);
  app_.fallthrough();
  add_words();
  add_frames();
  add_chains();
  describe_camera(*add(app_, "camera",
                       "Write disparity frames of a virtual stereo camera, its parameters (camera.json) "
                       "and the true depth in millimetres (truth/)",
                       [this] { camera_command(camera_, std::cout); }),
                  camera_);
}

CLI::App* CommandLine::add(CLI::App& parent, const char* name, const char* description,
                           std::function<void()> action) {
  CLI::App* const command = parent.add_subcommand(name, description);
  actions_.emplace_back(command, std::move(action));
  return command;
}

/// What filters and presets there are.
void CommandLine::add_words() {
  add(app_, "list", "List the filters and their parameters", [this] {
    list_command(library(), json_, std::cout);
  })->add_flag("--json", json_, "As JSON");
  add(app_, "help", "Say what a filter does, when to use it and what its parameters mean",
      [this] { help_command(library(), filter_, std::cout); })
      ->add_option("FILTER", filter_, "The filter; without it all of them, in a line each")
      ->type_name("");
  add(app_, "presets", "List the chains for common purposes, or print one",
      [this] { presets_command(preset_, std::cout); })
      ->add_option("NAME", preset_, "The preset to print, as a chain file")
      ->type_name("");
  add(app_, "schema", "Print a filter's configuration schema as it is",
      [this] { schema_command(library(), filter_, std::cout); })
      ->add_option("NAME", filter_, "The filter")
      ->required()
      ->type_name("");
}

/// What is done with frames.
void CommandLine::add_frames() {
  describe_run(*add(app_, "run", "Run a chain of filters on a sequence of images",
                    [this] {
                      run_.report.command = command_text(words());
                      run_command(library(), run_, std::cout, std::cerr);
                    }),
               run_);
  describe_bench(*add(app_, "bench", "Measure how many frames a second a run makes",
                      [this] { bench_command(library(), run_, std::cout); }),
                 run_);
  describe_tune(*add(app_, "tune", "Try chains of filters on a sequence of images in a browser",
                     [this] {
                       tune_.words.assign(argv_ + 1, argv_ + argc_);
                       tune_command(library(), tune_, std::cout, std::cerr);
                     }),
                tune_);
  describe_advise(*add(app_, "advise", "Find filters and values that suit a recording",
                       [this] {
                         advise_.run.report.command = command_text(words());
                         advise_command(library(), advise_, std::cout, std::cerr);
                       }),
                  advise_);
}

void CommandLine::add_chains() {
  CLI::App& chain = *app_.add_subcommand("chain", "Check, show and convert chains of filters");
  chain.require_subcommand(1);
  add(chain, "check", "Say what is wrong with chains",
      [this] { chain_check_command(library(), chains_, std::cout); })
      ->add_option("CHAIN", chains_, "Chain files or texts of steps")
      ->required()
      ->type_name("");
  add(chain, "show", "Print the steps of a chain with all their values",
      [this] { chain_show_command(library(), convert_.source, std::cout); })
      ->add_option("CHAIN", convert_.source, "A chain file or the text of steps")
      ->required()
      ->type_name("");
  describe_chain_convert(*add(chain, "convert", "Turn a chain into a chain file or the text of its steps",
                              [this] { chain_convert_command(library(), convert_, std::cout); }),
                         convert_);
  add(chain, "schema", "Print the JSON Schema of chain files",
      [this] { chain_schema_command(library(), std::cout); });
}

kit::FilterLibrary CommandLine::library() const {
  if (plugin_) return kit::load_plugin(*plugin_);
  const auto own = [] {
    try {
      return kit::default_plugin_file();
    } catch (const kit::Error& problem) {
      kit::fail(problem.what(), "; name one with --plugin PATH");
    }
  };
  return kit::load_plugin(own());
}

void CommandLine::refuse(const CLI::ParseError& problem) const {
  const std::vector<CLI::App*> named = app_.get_subcommands();
  if (named.empty() && !app_.remaining().empty()) {
    const std::string unknown = app_.remaining().front();
    std::vector<std::string> known;
    if (unknown.starts_with('-')) {
      for (const CLI::Option* option : app_.get_options()) known.push_back(option->get_name());
      kit::refuse("unknown option ", unknown, "; ", kit::suggest(unknown, known));
    }
    const auto any = [](const CLI::App*) { return true; };
    for (const CLI::App* command : app_.get_subcommands(any)) known.push_back(command->get_name());
    kit::refuse("unknown command ", unknown, "; ", kit::suggest(unknown, known));
  }
  const std::string command = named.empty() ? "" : named.front()->get_name() + ' ';
  kit::refuse(problem.what(), "; see zvfilter ", command, "--help");
}

int CommandLine::run() {
  try {
    app_.parse(argc_, argv_);
  } catch (const CLI::Success& wanted) {
    return app_.exit(wanted);
  } catch (const CLI::ParseError& problem) {
    refuse(problem);
  } catch (const kit::Error&) {
    // The values of options are read first, but who asks for help gets it.
    for (const CLI::App* command : app_.get_subcommands()) {
      if (command->get_help_ptr()->count() > 0) return app_.exit(CLI::CallForHelp());
    }
    throw;
  }
  for (const auto& [command, action] : actions_) {
    if (command->parsed()) action();
  }
  std::cout.flush();
  if (!std::cout) kit::fail("standard output cannot be written");
  return 0;
}

}  // namespace

}  // namespace zvfilter

namespace {

// Exit statuses.
constexpr int kRun = 1;        // something went wrong while doing what was asked
constexpr int kUsage = 2;      // what was asked makes no sense
constexpr int kStopped = 130;  // as a shell says it of a program that a signal ended

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
    return zvfilter::CommandLine(argc, argv).run();
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
