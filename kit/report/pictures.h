#ifndef KIT_REPORT_PICTURES_H
#define KIT_REPORT_PICTURES_H

#include "kit/image/color_map.h"
#include "kit/report/meaning.h"

namespace kit {

/// Colours by number.
struct IndexedPicture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<Rgb> palette;
  std::vector<unsigned char> indexes;
};

/// No picture has more columns or rows; larger frames are shown with every n-th pixel.
inline constexpr std::uint32_t kMostPictureSide = 1920;
std::uint32_t picture_step(const Frame& frame);

/// What pictures are made in; scripts can change it.
inline constexpr ColorMap kPictureMap = ColorMap::turbo;

/// 0 for an invalid value, else 1 to 255 from the low to the high end of the range.
unsigned char color_index(double value, const Interval& range);

/// The frame from near to far.
IndexedPicture depth_picture(const Frame& frame, const Interval& range);

/// What separates two frames of one shape and unit.
struct Difference {
  enum Kind : unsigned char { none, gained, lost, equal };  // the first colours of the palette
  static const std::vector<Rgb>& kind_colors();

  double limit = 1;  ///< colours run from -limit to limit
  IndexedPicture picture;
};
/// Whether they have one shape; the larger may be some times as large.
bool same_shape(const Frame& a, const Frame& b);
/// Between sizes, each pixel of the first is set against the one at its place.
Difference difference_of(const Frame& before, const Frame& after);

}  // namespace kit

#endif
