#ifndef ZVFILTER_OUTPUTS_H
#define ZVFILTER_OUTPUTS_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kit/frame/frame.h"
#include "kit/image/png.h"
#include "kit/pipeline/frame_source.h"
#include "preview.h"

namespace zvfilter {

struct OutputSettings {
  std::filesystem::path folder;
  std::optional<const kit::Codec*> format;  ///< nothing: each frame's own
  bool preview = false;
  PreviewSettings preview_settings;
  bool sync = false;  ///< each result, not only the last of a run
  kit::Compression compression = kit::Compression::fast;
  kit::ByteOrder raw_order = kit::ByteOrder::little;
};

/// Where one frame's results go.
struct OutputFiles {
  const kit::Codec* format = nullptr;
  std::filesystem::path image;
  std::filesystem::path preview;  ///< empty: none
  bool stack = false;             ///< it is one of the images of a stack
  std::size_t number = 0;         ///< of it there
  std::size_t count = 1;          ///< of all there
};

/// What the results may replace nothing of.
class InputFiles {
 public:
  void add(const kit::FrameSource& source);
  /// The input that this file is; empty for none.
  std::string find(const std::filesystem::path& file) const;

 private:
  std::map<std::pair<std::uint64_t, std::uint64_t>, std::string>
      names_;  // by what the file system tells files by
};

/// Names the results of every frame: a file for each, and a stack for a stack where the format has them.
/// @throws kit::Error when two would have one name or one would replace an input
std::vector<OutputFiles> plan_outputs(const kit::FrameSource& source, const InputFiles& inputs,
                                      const OutputSettings& settings);

/// Whether all the files are there; each is whole when it is.
bool exist(const OutputFiles& files);
/// @throws kit::Error naming the first file that is there
void expect_none(const std::vector<OutputFiles>& outputs);

/// Removes those that are there; what cannot be removed stays for the writer to complain of.
void remove_results(const OutputFiles& files);

/// What the result of a frame that has an extension is encoded by.
const kit::Codec& result_codec(const kit::FrameName& name, const OutputSettings& settings);
/// The contents of the image file.
/// @throws kit::Error
kit::Bytes encode_result(const kit::Codec& codec, const OutputSettings& settings,
                         const kit::FrameView& frame);

/// @param index of a stream's frame, which has no name
OutputFiles numbered_output(const kit::Codec& format, const std::filesystem::path& folder,
                            std::size_t index);

/// Writes each of the files whole or not at all.
/// @param preview draws the sequence's pictures
/// @throws kit::Error
void write_results(const OutputFiles& files, const OutputSettings& settings, const Preview& preview,
                   const PictureScale& scale, const kit::FrameView& before, const kit::FrameView& after,
                   kit::Durability durability);

}  // namespace zvfilter

#endif
