#ifndef TESTS_KIT_FOLDER_H
#define TESTS_KIT_FOLDER_H

#include <algorithm>
#include <filesystem>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "kit/common/files.h"

namespace kit {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

/// An .npy file with this header.
inline Bytes npy_file(int version, const std::string& header, std::string_view samples) {
  std::string file = "\x93NUMPY";
  file += static_cast<char>(version);
  file += '\0';
  file += static_cast<char>(header.size());
  file.append(version > 1 ? 3 : 1, '\0');
  (file += header).append(samples);
  return Bytes(file.begin(), file.end());
}

inline Bytes npy_of(const std::string& shape, std::string_view samples, const std::string& type = "'<u2'",
                    const std::string& order = "False") {
  return npy_file(1, "{'descr': " + type + ", 'fortran_order': " + order + ", 'shape': (" + shape + ")}",
                  samples);
}

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
