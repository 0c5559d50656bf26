#ifndef ZVFILTER_DESTINATION_H
#define ZVFILTER_DESTINATION_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "options.h"
#include "outputs.h"

namespace zvfilter {

/// Where the results of a sequence go.
class Destination {
 public:
  Destination() = default;
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;
  virtual ~Destination() = default;

  /// Whether write() is to be called in the order of the frames, one at a time, and not side by side.
  virtual bool in_order() const = 0;
  /// In the order of the frames, before their write().
  virtual void see(std::size_t, const kit::FrameView&, const kit::FrameView&) {}
  /// @return how many frames' results this makes whole
  /// @throws kit::Error
  virtual std::size_t write(std::size_t index, const kit::FrameView& before,
                            const kit::FrameView& after) = 0;
};

/// Files in a folder: images of their own, stacks, and frame_NNNN for frames without names.
class FileDestination final : public Destination {
 public:
  /// @param outputs of each frame; none: they are those of a stream
  /// @param present which of them are there and stay
  /// @param record says what makes the results, in a file beside them
  FileDestination(const RunOptions& options, std::filesystem::path folder,
                  std::vector<OutputFiles> outputs, std::vector<bool> present, std::string record);

  bool in_order() const override { return stacks_; }
  void see(std::size_t index, const kit::FrameView& before, const kit::FrameView& after) override;
  std::size_t write(std::size_t index, const kit::FrameView& before,
                    const kit::FrameView& after) override;

 private:
  OutputFiles next_of_stream(std::size_t index) const;
  void begin();
  std::size_t write_stacked(const OutputFiles& files, const kit::FrameView& after,
                            kit::Durability durability);

  const RunOptions& options_;
  std::filesystem::path folder_;
  std::vector<OutputFiles> outputs_;
  std::vector<bool> present_;
  std::string record_;
  bool stacks_;
  Preview preview_;
  std::vector<PictureScale> scales_;  // of the pictures
  std::once_flag begun_;
  std::unique_ptr<kit::ImageFileWriter> stack_;  // under way
  std::size_t stacked_ = 0;                      // images in it
};

/// Standard output as a stream of frames. From then on, all else that is printed there goes to standard error.
/// @param own the frames' format, where they have one
/// @throws kit::Error for what makes no sense there
std::unique_ptr<Destination> standard_output(const RunOptions& options, const kit::Codec* own);

}  // namespace zvfilter

#endif
