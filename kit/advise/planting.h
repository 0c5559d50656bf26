#ifndef KIT_ADVISE_PLANTING_H
#define KIT_ADVISE_PLANTING_H

#include <cstdint>
#include <random>
#include <vector>

#include "kit/advise/lattice.h"
#include "kit/advise/prediction.h"

namespace kit {

/// Numbers that are the same everywhere.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : engine_(seed) {}
  /// From 0 to below count.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }
  /// From 0 to below 1.
  double share() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }

 private:
  std::mt19937_64 engine_;
};

/// A frame in the making, with what its pixels mean.
struct PlantedFrame {
  Frame& frame;
  const InverseTable& inverses;
  std::uint16_t invalid;  ///< a pixel without depth
};

/// A pixel whose value was changed.
struct Planted {
  std::size_t pixel;
  float before;  ///< 1/m
  float after;   ///< 0: it was hidden
};

/// Hides pixels that are valid: the frame's own holes, moved elsewhere, blocks of 2 to 32 pixels and bands behind edges.
std::vector<Planted> hide_pixels(PlantedFrame& planted, Chance& chance);
/// Sets spots of up to 4 pixels in radius to another depth.
std::vector<Planted> plant_speckles(PlantedFrame& planted, Chance& chance);

/// What became of hidden pixels.
struct Hidden {
  double count = 0, filled = 0;
  Prediction errors;  ///< of those filled

  void add(const std::vector<Planted>& hidden, const InverseTable& inverses,
           std::span<const std::uint16_t> filtered);
};

/// What became of speckles.
struct Speckles {
  double count = 0,
         left = 0;  ///< pixels, and those that are still nearer to the speckle than to what was there

  void add(const std::vector<Planted>& speckles, const InverseTable& inverses,
           std::span<const std::uint16_t> filtered);
};

}  // namespace kit

#endif
