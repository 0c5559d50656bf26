#ifndef KIT_ADVISE_PREDICTION_H
#define KIT_ADVISE_PREDICTION_H

#include "kit/advise/error_counts.h"
#include "kit/advise/lattice.h"

namespace kit {

/// What the camera sees of surfaces: each place as the mean of those around it that lie on the same surface, so that neither the
/// noise of one pixel nor a pattern that stays is taken for what is there. 0 where too few of them are seen.
Inverses surfaces_of(const Inverses& raw, const Lattice& lattice);

/// How well filtered frames tell what the camera sees next: who leaves noise and who drags trails are both punished.
struct Prediction {
  ErrorCounts errors;  ///< 1/m
  double off = 0;      ///< of them, those above 5 % of the depth

  /// Where the camera saw something in both frames and the filter left it.
  /// @param next surfaces of the next frame
  void add(const Inverses& filtered, const Inverses& raw, const Inverses& next);
  void add(float predicted, float seen);
};

}  // namespace kit

#endif
