#ifndef KIT_PIPELINE_FRAME_SOURCE_H
#define KIT_PIPELINE_FRAME_SOURCE_H

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kit/frame/frame_attributes.h"
#include "kit/image/codec.h"
#include "kit/pipeline/camera_options.h"

namespace kit {

struct FrameName {
  std::string label;                         ///< what messages call it
  std::string stem;                          ///< of its output's name
  std::string extension;                     ///< of its output's name, unless another format is asked for
  std::vector<std::filesystem::path> files;  ///< what it is read from; none: it is made
  std::size_t number = 0;                    ///< of the image in its file
  std::size_t count = 1;                     ///< of the images in its file
  bool stack = false;                        ///< whether its file is a stack, be it of one image
};

struct SourceFrame {
  Frame frame;
  std::optional<Image> truth;  ///< depth in millimetres, 0 where it is not known; of the frame's size
};

/// A sequence of frames, which may be loaded in any order and by any thread, or a stream of them.
struct FrameSource {
  std::vector<FrameName> names;                        ///< none: it is a stream
  std::function<SourceFrame(std::size_t index)> load;  ///< @throws Error
  /// Of a stream: its next frame, for one thread at a time; nothing at its end.
  std::function<std::optional<SourceFrame>()> next = {};  ///< @throws Error; further frames may follow

  /// What messages call a frame.
  std::string label(std::size_t index) const;
};

/// A frame for each image in the files, and its truth from the image at its place in a file of the same stem.
/// @param truth files with the true depth; none: there is no truth
/// @param options say what the files don't; metres are for frames alone, the truth is in millimetres
/// @throws Error when a file has not one truth; its load() also when a frame has another size than the first
FrameSource file_source(const std::vector<std::filesystem::path>& files,
                        const std::vector<std::filesystem::path>& truth, const ReadOptions& options,
                        const FrameAttributes& attributes);

/// The frames of standard input until it ends, all of one size.
/// @param options with the size of images that don't say it
/// @param stop asked while nothing comes; true ends the stream
FrameSource standard_input_source(const Codec& codec, const ReadOptions& options,
                                  const FrameAttributes& attributes, std::function<bool()> stop);

/// The frames of the virtual camera, with their truth.
/// @param attributes take the place of the camera's own where they say anything
FrameSource camera_source(const CameraRequest& request, const FrameAttributes& attributes);

}  // namespace kit

#endif
