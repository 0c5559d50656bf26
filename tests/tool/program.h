#ifndef TESTS_TOOL_PROGRAM_H
#define TESTS_TOOL_PROGRAM_H

#include <cstdlib>
#include <map>

#include <sys/wait.h>

#include "../kit/folder.h"
#include "kit/common/text.h"
#include "kit/image/codec.h"

namespace kit {

inline constexpr std::size_t kMostBytes = 1 << 20;
inline const std::string kProbe = " --plugin '" ZVFILTER_PROBE_PLUGIN "' ";

/// Holes, and what HoleFillingFilter makes of them by itself: each takes the pixel above.
inline const Image kHoles{3, 3, {5, 6, 7, 0, 8, 0, 9, 0, 1}}, kFilled{3, 3, {5, 6, 7, 5, 8, 7, 9, 8, 1}};

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

/// The built program, run as a user runs it, in a folder of its own.
class Program : public Folder {
 protected:
  Program() {
    fs::create_directory(folder_ / "in");
    put("holes.png", kHoles);
  }

  std::string text_of(const fs::path& file) const {
    const Bytes bytes = read_whole(folder_ / file, kMostBytes);
    return {bytes.begin(), bytes.end()};
  }
  /// Runs the program inside the folder, after some words for the shell.
  Outcome run(const std::string& arguments, const std::string& before = "",
              const std::string& input = "/dev/null") const {
    const std::string command = concat("cd '", folder_.string(), "' && exec > out.txt 2> err.txt; ",
                                       before, ZVFILTER_COMMAND " ", arguments, " < ", input);
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of("out.txt"), text_of("err.txt")};
  }
  Outcome run_probe(const std::string& arguments, const std::string& input = "/dev/null") const {
    return run(arguments + kProbe, "", input);
  }
  /// Runs the program, which has to succeed.
  Outcome complete(const std::string& arguments) const {
    Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments << '\n' << outcome.err;
    return outcome;
  }
  static void expect_failed(const Outcome& outcome, int status, const std::string& part) {
    EXPECT_EQ(outcome.status, status) << outcome.err;
    EXPECT_MENTIONS(outcome.err, part);
  }
  /// Expects one line on standard error with the text, the status, and no result.
  void expect_refused(const Outcome& outcome, int status, const std::string& part) const {
    expect_failed(outcome, status, part);
    EXPECT_TRUE(outcome.err.starts_with("zvfilter: ")) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_FALSE(fs::exists(folder_ / "results"));
  }
  /// The same for a table of arguments, each after `start`.
  void expect_refused(int status, const std::string& start,
                      const std::map<std::string, std::string>& parts) const {
    for (const auto& [arguments, part] : parts) {
      SCOPED_TRACE(arguments);
      expect_refused(run(start + arguments), status, part);
    }
  }
  using Folder::put;
  void put(const std::string& name, std::string_view text) const {
    put(name, Bytes(text.begin(), text.end()));
  }
  void put(const std::string& name, const Image& image) const {
    put(name, codec_of_extension(fs::path(name).extension().string())->encode(image));
  }
  Image get(const std::string& name, Size size = {}) const {
    const fs::path file = folder_ / name;
    return codec_of_extension(file.extension().string())->decode(read_whole(file, kMostBytes), size);
  }
  /// The names of what is in the folder but for hidden files.
  Names listing(const std::string& name) const {
    Names names = Folder::listing(name);
    std::erase_if(names, [](const std::string& each) { return each.starts_with('.'); });
    return names;
  }
};

}  // namespace kit

#endif
