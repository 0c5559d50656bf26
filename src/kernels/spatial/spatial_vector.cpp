#include "kernels/spatial/spatial.h"
#include "kernels/spatial/spatial_passes.h"
#include "kernels/spatial/spatial_plan.h"
#include "kernels/spatial/spatial_step.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Calls use with the blend.
template <typename Use>
void with_blend(float alpha, unsigned largest, Use use) {
  if constexpr (kUnsignedPixels) {
    use(WrappedMean<U16>{});
  } else {
    const SpatialBlend blend = spatial_blend(alpha, largest);
    switch (blend.kind) {
      case SpatialBlend::Kind::half:
        return use(Half<U16>{});
      case SpatialBlend::Kind::fixed_point:
        return use(FixedPoint<U16>{U16::splat(blend.multiplier)});
      case SpatialBlend::Kind::floating:
        return use(Floating<U16>{Factor(1 - alpha), Factor(alpha)});
    }
  }
}

/// Calls use with the two bounds in the simplest form that has both.
template <typename Use>
void with_bounds(const SpatialBounds& inclusive, const SpatialBounds& exclusive, Use use) {
  if (inclusive.count == 1 && exclusive.count == 1) {
    use(FixedBound{U16::splat(inclusive.entries[0])}, FixedBound{U16::splat(exclusive.entries[0])});
  } else {
    use(SmallTable(inclusive.entries, inclusive.shift), SmallTable(exclusive.entries, exclusive.shift));
  }
}

/// @return false when these parameters are left to the plain form
bool filter(std::uint16_t* pixels, std::size_t width, std::size_t height,
            const SpatialParameters& parameters, bool horizontally, bool vertically) {
  const SpatialBounds inclusive =
      spatial_bounds(parameters.thresholds, Threshold::inclusive, SmallTable::capacity);
  const SpatialBounds exclusive =
      spatial_bounds(parameters.thresholds, Threshold::exclusive, SmallTable::capacity);
  if (inclusive.count == 0 || exclusive.count == 0 || parameters.alpha != parameters.alpha) return false;

  const unsigned largest = inclusive.largest > exclusive.largest ? inclusive.largest : exclusive.largest;
  with_blend(parameters.alpha, largest, [&](auto blend) {
    with_bounds(inclusive, exclusive, [&](auto across, auto along) {
      const auto run = [&]<bool kFill>() {
        using Across = Step<decltype(across), decltype(blend), kFill>;
        using Along = Step<decltype(along), decltype(blend), false>;
        const U16 radius = U16::splat(parameters.radius);
        const Horizontal<Across> horizontal = {pixels, width, height, {across, blend, radius}};
        const Vertical<Along> vertical = {pixels, width, height, {along, blend, radius}};
        // The downward pass follows the horizontal ones strip by strip, while the strips are in the
        // cache.
        std::size_t done = 0;
        while (horizontally) {
          const std::size_t end = horizontal.filter_from(done);
          if (end == done) break;
          if (vertically) vertical.down(done, end);
          done = end;
        }
        if (vertically) {
          vertical.down(done, height);
          vertical.up();
        }
      };
      // A run's first hole already counts 1, so a radius of 1 fills nothing.
      if (horizontally && parameters.radius > 1) {
        run.template operator()<true>();
      } else {
        run.template operator()<false>();
      }
    });
  });
  return true;
}

void spatial_horizontal(std::uint16_t* pixels, std::size_t width, std::size_t height,
                        const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, true, false)) {
    plain::spatial.horizontal(pixels, width, height, parameters);
  }
}

void spatial_vertical(std::uint16_t* pixels, std::size_t width, std::size_t height,
                      const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, false, true)) {
    plain::spatial.vertical(pixels, width, height, parameters);
  }
}

void spatial_both(std::uint16_t* pixels, std::size_t width, std::size_t height,
                  const SpatialParameters& parameters) {
  if (!filter(pixels, width, height, parameters, true, true)) {
    plain::spatial.both(pixels, width, height, parameters);
  }
}

}  // namespace

extern const SpatialKernels spatial = {spatial_horizontal, spatial_vertical, spatial_both};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
