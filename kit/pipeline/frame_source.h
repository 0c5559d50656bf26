#ifndef KIT_PIPELINE_FRAME_SOURCE_H
#define KIT_PIPELINE_FRAME_SOURCE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/camera_options.h"
#include "virtual_camera.h"

namespace kit {

struct FrameName {
  std::string label;                         ///< what messages call it
  std::string stem;                          ///< of its output's name
  std::string extension;                     ///< of its output's name, unless another format is asked for
  std::vector<std::filesystem::path> files;  ///< what it is read from; none: it is made
};

struct SourceFrame {
  Frame frame;
  std::optional<Image> truth;  ///< depth in millimetres, 0 where it is not known; of the frame's size
};

/// A sequence of frames of known length and names.
class FrameSource {
 public:
  virtual ~FrameSource() = default;
  virtual std::size_t count() const = 0;
  virtual FrameName name(std::size_t index) const = 0;
  /// @throws Error
  virtual SourceFrame load(std::size_t index) const = 0;
};

/// One frame from each of the files, and its truth from a file of the same stem.
class FileSource : public FrameSource {
 public:
  /// @param truth files with the true depth; none: there is no truth
  /// @param raw_size of the files that do not say their size
  /// @throws Error when a file has not one truth
  FileSource(std::vector<std::filesystem::path> files, const std::vector<std::filesystem::path>& truth,
             const Size& raw_size, FrameAttributes attributes);

  std::size_t count() const override { return files_.size(); }
  FrameName name(std::size_t index) const override;
  SourceFrame load(std::size_t index) const override;

 private:
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
  FrameName name(std::size_t index) const override;
  SourceFrame load(std::size_t index) const override;

 private:
  devhost::VirtualCamera camera_;
  std::size_t count_;
  FrameAttributes attributes_;
};

}  // namespace kit

#endif
