#ifndef TESTS_TOOL_PROGRAM_H
#define TESTS_TOOL_PROGRAM_H

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdlib.h>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "kit/common/text.h"
#include "kit/image/codec.h"

namespace kit {

namespace fs = std::filesystem;

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

inline constexpr std::size_t kMostBytes = 1 << 20;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

/// The built program, run as a user runs it, in a folder of its own.
class Program : public testing::Test {
 protected:
  Program() {
    std::string pattern = (fs::temp_directory_path() / "zvfilter_test_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    fs::create_directory(folder_ / "in");
  }
  ~Program() override { fs::remove_all(folder_); }

  std::string text_of(const fs::path& file) const {
    const Bytes bytes = read_whole(file, kMostBytes);
    return {bytes.begin(), bytes.end()};
  }
  /// Runs the program inside the folder, after some words for the shell.
  Outcome run(const std::string& arguments, const std::string& before = "",
              const std::string& input = "/dev/null") const {
    const std::string command = concat("cd '", folder_.string(), "' && exec > out.txt 2> err.txt; ",
                                       before, ZVFILTER_COMMAND " ", arguments, " < ", input);
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(folder_ / "out.txt"),
            text_of(folder_ / "err.txt")};
  }
  Outcome run_probe(const std::string& arguments) const {
    return run(arguments + " --plugin '" ZVFILTER_PROBE_PLUGIN "'");
  }
  /// Expects one line on standard error with the text, the status, and no result.
  void expect_refused(const Outcome& outcome, int status, const std::string& part) const {
    EXPECT_EQ(outcome.status, status) << outcome.err;
    EXPECT_TRUE(outcome.err.starts_with("zvfilter: ")) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_MENTIONS(outcome.err, part);
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
  void put(const std::string& name, const Bytes& bytes) const {
    write_whole(folder_ / name, bytes, Durability::buffered);
  }
  void put(const std::string& name, const Image& image) const {
    put(name, codec_of_extension(fs::path(name).extension().string())->encode(image));
  }
  Image get(const std::string& name, Size size = {}) const {
    const fs::path file = folder_ / name;
    return codec_of_extension(file.extension().string())->decode(read_whole(file, kMostBytes), size);
  }
  /// The names of what is in the folder but for hidden files.
  std::vector<std::string> listing(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_ / name)) {
      const std::string each = entry.path().filename().string();
      if (!each.starts_with('.')) names.push_back(each);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path folder_;
};

using Names = std::vector<std::string>;

}  // namespace kit

#endif
