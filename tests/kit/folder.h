#ifndef TESTS_KIT_FOLDER_H
#define TESTS_KIT_FOLDER_H

#include <algorithm>
#include <filesystem>
#include <stdlib.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kit/common/files.h"

namespace kit {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

/// Tests with files, in a folder of their own.
class Folder : public testing::Test {
 protected:
  Folder() {
    std::string pattern = (fs::temp_directory_path() / "zvfilter_test_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~Folder() override { fs::remove_all(folder_); }

  fs::path put(const std::string& name, const Bytes& bytes = {}) const {
    write_whole(folder_ / name, bytes, Durability::buffered);
    return folder_ / name;
  }
  Names listing(const std::string& name = "") const {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder_ / name))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path folder_;
};

}  // namespace kit

#endif
