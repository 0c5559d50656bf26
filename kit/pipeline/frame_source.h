#ifndef KIT_PIPELINE_FRAME_SOURCE_H
#define KIT_PIPELINE_FRAME_SOURCE_H

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/camera_options.h"

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

/// A sequence of frames, which may be loaded in any order and by any thread.
struct FrameSource {
  std::vector<FrameName> names;
  std::function<SourceFrame(std::size_t index)> load;  ///< @throws Error
};

/// One frame from each of the files, and its truth from a file of the same stem.
/// @param truth files with the true depth; none: there is no truth
/// @param raw_size of the files that do not say their size
/// @throws Error when a file has not one truth
FrameSource file_source(const std::vector<std::filesystem::path>& files,
                        const std::vector<std::filesystem::path>& truth, const Size& raw_size,
                        const FrameAttributes& attributes);

/// The frames of the virtual camera, with their truth.
/// @param attributes take the place of the camera's own where they say anything
FrameSource camera_source(const CameraRequest& request, const FrameAttributes& attributes);

}  // namespace kit

#endif
