#ifndef KIT_ADVISE_PREDICTION_H
#define KIT_ADVISE_PREDICTION_H

#include "kit/advise/error_counts.h"
#include "kit/advise/lattice.h"

namespace kit {

/// How well filtered frames tell what the camera sees next: who leaves noise and who drags trails are both punished.
struct Prediction {
  ErrorCounts errors;  ///< 1/m
  double off = 0;      ///< of them, those above 5 % of the depth

  /// Where the camera saw something in both frames and the filter left it.
  void add(const Inverses& filtered, const Inverses& raw, const Inverses& next);
  /// For a lone frame: the mean of the neighbours on a row, against the raw pixel between them.
  void add_between(const Inverses& filtered, const Inverses& raw, const Lattice& lattice);
  void add(float predicted, float seen);
};

}  // namespace kit

#endif
