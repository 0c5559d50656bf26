#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <ostream>
#include <spawn.h>
#include <thread>

#include "commands.h"
#include "interruption.h"
#include "kit/chain/chain_file.h"
#include "kit/common/error.h"
#include "kit/tuner/server.h"
#include "run_report.h"
#include "run_setup.h"

namespace zvfilter {

namespace {

constexpr auto kInterruptionPause = std::chrono::milliseconds(20);

/// The chain to begin with: none where nothing is named and where the named file does not exist yet.
kit::Chain first_chain(TuneOptions& options) {
  RunOptions& run = options.run;
  const bool named = !run.filters.empty() || !run.chain.empty() || !run.preset.empty();
  const bool new_file = kit::is_chain_file(run.chain) &&
                        !std::filesystem::exists(std::filesystem::symlink_status(run.chain));
  if (named && !new_file) return open_chain(run);
  if (!run.settings.empty()) kit::refuse("--set ", run.settings.front(), ": there is no chain yet");
  return {};
}

/// The words of the command line that say what the input is.
std::vector<std::string> input_words(const std::vector<std::string>& words) {
  const std::vector<std::string> with_value = {"-f",       "--filter", "--chain",
                                               "--preset", "--set",    "--port"};
  std::vector<std::string> kept;
  bool value = false;
  for (const std::string& word : words) {
    const bool skipped = std::exchange(value, false);
    const auto names = [&](const std::string& option) {
      return word == option || word.starts_with(option + "=") ||
             (!option.starts_with("--") && word.starts_with(option));
    };
    const bool dropped = std::any_of(with_value.begin(), with_value.end(), names);
    if (!skipped && !dropped && word != "--open" && word != "tune") kept.push_back(word);
    value =
        !skipped && dropped && std::find(with_value.begin(), with_value.end(), word) != with_value.end();
  }
  return kept;
}

std::string run_command_text(const std::vector<std::string>& words, const std::string& chain) {
  std::vector<std::string> command = {"zvfilter", "run", "--chain", chain};
  command.insert(command.end(), words.begin(), words.end());
  command.insert(command.end(), {"-o", "filtered"});
  return command_text(command);
}

kit::FrameSource open_one_sequence(RunOptions& run, std::ostream& notes) {
  if (std::find(run.inputs.begin(), run.inputs.end(), "-") != run.inputs.end())
    kit::refuse("-: the tuner goes back and forth in its input; expected files, folders or camera:");
  std::vector<Sequence> sequences = open_sequences(run, notes);
  if (sequences.size() > 1) {
    kit::refuse(sequences.size(),
                " folders are as many sequences; the tuner shows one, expected one folder");
  }
  return std::move(sequences.front().source);
}

/// Asks the desktop; the address is printed in any case.
void open_in_browser(const std::string& address, std::ostream& notes) {
  std::string program = "xdg-open", argument = address;
  char* const words[] = {program.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&quiet, 2, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  if (::posix_spawnp(&process, program.c_str(), &quiet, nullptr, words, environ) != 0)
    notes << "zvfilter: note: xdg-open is not there to open a browser; open the address yourself\n";
  posix_spawn_file_actions_destroy(&quiet);
}

}  // namespace

void tune_command(const kit::FilterLibrary& library, TuneOptions options, std::ostream& out,
                  std::ostream& notes) {
  kit::tuner::Settings settings;
  settings.chain.steps = first_chain(options);
  static_cast<void>(kit::Pipeline(library, settings.chain.steps));
  kit::FrameSource source = open_one_sequence(options.run, notes);
  note_nominal_camera(options.run, settings.chain.steps, notes);
  if (kit::is_chain_file(options.run.chain)) {
    settings.chain_file = options.run.chain;
    // What the file says beside its steps stays in it.
    if (std::filesystem::exists(options.run.chain)) {
      kit::ChainFile file = kit::read_chain_file(options.run.chain);
      settings.chain.description = std::move(file.description);
      settings.chain.input = std::move(file.input);
    }
  }
  settings.intrinsics = options.run.camera_input ||
                        (options.run.attributes.camera && options.run.attributes.camera->has_intrinsics);
  settings.use_truth = options.run.truth.has_value();
  settings.input = kit::join(options.run.inputs, " ");
  settings.command = [words = input_words(options.words)](const std::string& chain) {
    return run_command_text(words, chain);
  };
  kit::tuner::Server server(library, std::move(source), std::move(settings), options.port);
  const Interruption interruption;
  server.start();
  out << "zvfilter: the tuner is at " << server.address() << "\nzvfilter: Ctrl-C ends it" << std::endl;
  if (options.open) open_in_browser(server.address(), notes);
  while (!Interruption::asked()) std::this_thread::sleep_for(kInterruptionPause);
  server.finish();
  // Open connections would keep their threads for seconds.
  std::quick_exit(0);
}

}  // namespace zvfilter
