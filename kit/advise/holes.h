#ifndef KIT_ADVISE_HOLES_H
#define KIT_ADVISE_HOLES_H

#include "kit/advise/prediction.h"

namespace kit {

/// What a frame's holes hide: between a near and a far surface the far one, which one of two cameras does not see there. At
/// the ends of a row, where there is nothing on one side, kUnknown; where both sides are alike, and where there is no hole, 0.
inline constexpr float kUnknown = -1;
Inverses behind_holes(const Inverses& raw, const Lattice& lattice);

/// How well filters fill what the camera did not see.
struct FilledHoles {
  double within = 0;   ///< places in holes with one surface on both sides
  Prediction between;  ///< the others; what is filled from one side only counts as wrong

  /// @param behind as behind_holes() has it
  void add(const Inverses& behind, const Inverses& raw, const Inverses& filtered);
};

}  // namespace kit

#endif
