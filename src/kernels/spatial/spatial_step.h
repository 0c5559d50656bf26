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

#if defined(FILTERPROCESSOR_LEVEL_NEON)
struct WrappedMean {
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return wrapped_mean_where(mask, previous, current);
  }
};
#else
struct Half {
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return mean_to_even_where(mask, previous, current);
  }
};
struct FixedPoint {
  U16 weight;
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    return add_where(mask, current, previous, multiply_round(current - previous, weight));
  }
};
struct Floating {
  Factor previous_weight, current_weight;
  U16 operator()(Mask16 mask, U16 previous, U16 current) const {
    const PixelHalves p(previous);
    const PixelHalves c(current);
    return select(mask,
                  rounded(p.first * previous_weight + c.first * current_weight,
                          p.second * previous_weight + c.second * current_weight),
                  current);
  }
};
#endif

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
      result = select(hole & below(state.counter, radius), previous.value, result);
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
