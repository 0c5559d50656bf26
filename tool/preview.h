#ifndef ZVFILTER_PREVIEW_H
#define ZVFILTER_PREVIEW_H

#include <optional>

#include "kit/frame/frame.h"
#include "kit/frame/frame_colors.h"

namespace zvfilter {

struct PreviewSettings {
  kit::ColorMap colors = kit::ColorMap::turbo;
  std::optional<kit::DepthRange> range;  ///< nothing: that of the first frame
};

struct PictureScale {
  kit::DepthRange range;
  double change_limit;  ///< millimetres
};

/// Pictures of the frames of a sequence: before, after and, where the size stays, the change, side by side with their legends
/// in millimetres.
///
/// All pictures have one range, so that they can be compared and played: it is that of the first frame with valid pixels,
/// before and after together. One pass over the sequence is enough for it, and a frame's picture doesn't depend on those that
/// come later.
class Preview {
 public:
  explicit Preview(const PreviewSettings& settings);

  /// What the next frame of the sequence is drawn with.
  PictureScale scale_of(const kit::FrameView& before, const kit::FrameView& after);
  /// Any thread.
  kit::ColorImage draw(const PictureScale& scale, const kit::FrameView& before,
                       const kit::FrameView& after) const;

 private:
  kit::ColorMap colors_;
  std::optional<kit::DepthRange> range_;
  double change_limit_ = 0;  // 0: not known yet
};

}  // namespace zvfilter

#endif
