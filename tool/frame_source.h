#ifndef ZVFILTER_FRAME_SOURCE_H
#define ZVFILTER_FRAME_SOURCE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "camera_options.h"
#include "dev_host.h"
#include "frame_attributes.h"
#include "images/codec.h"
#include "virtual_camera.h"

namespace zvfilter {

struct FrameName {
  std::string label;                         ///< what messages call it
  std::string stem;                          ///< of its output's name
  std::string extension;                     ///< of its output's name, unless another format is asked for
  std::vector<std::filesystem::path> files;  ///< what it is read from
};

struct SourceFrame {
  devhost::FrameTraits frame;
  std::optional<Image> truth;  ///< depth in millimetres, 0 where it is not known; of the frame's size
};

/// A sequence of frames of known length and names.
class FrameSource {
 public:
  virtual ~FrameSource() = default;
  virtual std::size_t count() const = 0;
  virtual bool reads_files() const = 0;
  virtual FrameName name(std::size_t index) const = 0;
  /// @throws Failure
  virtual SourceFrame load(std::size_t index) = 0;
};

/// One frame from each of the files, and its truth from a file of the same stem.
class FileSource : public FrameSource {
 public:
  /// @param truth files with the true depth; none: there is no truth
  /// @param raw_size of the files that do not say their size
  /// @throws Failure when a file needs a size and none is given, and when it has not one truth
  FileSource(std::vector<std::filesystem::path> files, const std::vector<std::filesystem::path>& truth,
             std::optional<Size> raw_size, FrameAttributes attributes);

  std::size_t count() const override { return files_.size(); }
  bool reads_files() const override { return true; }
  FrameName name(std::size_t index) const override;
  SourceFrame load(std::size_t index) override;

 private:
  Image read(const std::filesystem::path& file) const;

  std::vector<std::filesystem::path> files_;
  std::vector<std::filesystem::path> truth_;  // as many as there are files, or none
  Size raw_size_;
  FrameAttributes attributes_;
};

/// The frames of the virtual camera, with their truth.
class CameraSource : public FrameSource {
 public:
  /// @param attributes take the place of the camera's own where they say anything
  CameraSource(const CameraRequest& request, FrameAttributes attributes);

  std::size_t count() const override { return count_; }
  bool reads_files() const override { return false; }
  FrameName name(std::size_t index) const override;
  SourceFrame load(std::size_t index) override;

 private:
  devhost::VirtualCamera camera_;
  std::size_t count_;
  FrameAttributes attributes_;
};

}  // namespace zvfilter

#endif
