#ifndef ZVFILTER_FRAME_SOURCE_H
#define ZVFILTER_FRAME_SOURCE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "dev_host.h"
#include "frame_attributes.h"
#include "images/codec.h"

namespace zvfilter {

struct FrameName {
  std::string label;           ///< what messages call it
  std::string stem;            ///< of its output's name
  std::string extension;       ///< of its output's name, unless another format is asked for
  std::filesystem::path file;  ///< where it comes from; empty for a frame of no file
};

/// A sequence of frames of known length and names.
class FrameSource {
 public:
  virtual ~FrameSource() = default;
  virtual std::size_t count() const = 0;
  virtual FrameName name(std::size_t index) const = 0;
  /// @throws Failure
  virtual devhost::FrameSpec load(std::size_t index) = 0;
};

/// One frame from each of the files.
class FileSource : public FrameSource {
 public:
  /// @param raw_size of the files that do not say their size
  /// @throws Failure when a file needs a size and none is given
  FileSource(std::vector<std::filesystem::path> files, std::optional<Size> raw_size,
             const FrameAttributes& attributes);

  std::size_t count() const override { return files_.size(); }
  FrameName name(std::size_t index) const override;
  devhost::FrameSpec load(std::size_t index) override;

 private:
  std::vector<std::filesystem::path> files_;
  Size raw_size_;
  FrameAttributes attributes_;
};

}  // namespace zvfilter

#endif
