/// One step of a pass in vector form, from its parts: a bound by pixel, and a blend.
#ifndef FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_STEP_H
#define FILTERPROCESSOR_KERNELS_SPATIAL_SPATIAL_STEP_H

#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

struct FixedBound {
  U16 bound;
  U16 operator()(U16 /*pixels*/) const { return bound; }
};

// The blends. Vector is U16, always: only the blends of the processor's own family are made, and a level has the
// operations of these.

template <typename Vector>
struct WrappedMean {
  U16 operator()(Mask16 mask, Vector previous, Vector current) const {
    return wrapped_mean_where(mask, previous, current);
  }
};
template <typename Vector>
struct Half {
  U16 operator()(Mask16 mask, Vector previous, Vector current) const {
    return mean_to_even_where(mask, previous, current);
  }
};
template <typename Vector>
struct FixedPoint {
  Vector weight;
  U16 operator()(Mask16 mask, Vector previous, Vector current) const {
    return add_where(mask, current, previous, multiply_round(current - previous, weight));
  }
};
template <typename Vector>
struct Floating {
  Factor previous_weight, current_weight;
  U16 operator()(Mask16 mask, Vector previous, Vector current) const {
    const PixelHalves p(previous);
    const PixelHalves c(current);
    const auto blend = [this](auto previous_half, auto current_half) {
      return previous_half * previous_weight + current_half * current_weight;
    };
    return select(mask, rounded(blend(p.first, c.first), blend(p.second, c.second)), current);
  }
};

/// One step of a pass, for as many rows or columns as there are lanes.
template <typename Bound, typename Blend, bool kFill>
struct Step {
  struct State {
    Pixels previous = Pixels(U16::zero());  // invalid: leaves the first pixel as it is
    U16 counter = U16::zero();
  };

  Bound bound;
  Blend blend;
  U16 radius;

  [[gnu::always_inline]] U16 operator()(State& state, U16 pixels) const {
    const Pixels current(pixels);
    const Pixels previous = state.previous;
    U16 result = blend(close(previous, current, bound(pixels)), previous.value, pixels);
    if constexpr (kFill) {
      const Mask16 hole = previous.valid() & ~current.valid();
      const Mask16 reset = previous.valid() & current.valid();
      state.counter = increment_where(hole, select(reset, U16::zero(), state.counter));
      result = select(hole & counts_below(state.counter, radius), previous.value, result);
      state.previous = Pixels(result);
    } else {
      state.previous = current.with(result);
    }
    return result;
  }
};

}  // namespace

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
