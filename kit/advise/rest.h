#ifndef KIT_ADVISE_REST_H
#define KIT_ADVISE_REST_H

#include <span>

#include "kit/advise/error_counts.h"
#include "kit/advise/lattice.h"

namespace kit {

/// The places of a lattice where a clip's raw frames are at rest, in the sense of Steadiness, and what is there. Of a single frame,
/// all that it sees.
class RestingPlaces {
 public:
  RestingPlaces(std::span<const Inverses> raw, const Lattice& lattice);

  struct Edge {
    std::size_t place;
    float here, beyond;  ///< medians on this side and on the other
  };
  const std::vector<std::size_t>& places() const { return places_; }
  const std::vector<Edge>& edges() const { return edges_; }

 private:
  std::vector<std::size_t> places_;
  std::vector<Edge> edges_;
};

/// What filtered frames do to places at rest.
struct Rest {
  ErrorCounts changes;             ///< from one frame to the next, 1/m
  double seen = 0, lost = 0;       ///< places that the camera saw, and those that the filter emptied
  double at_edges = 0, moved = 0;  ///< places beside an edge, and those nearer to the other side of it

  /// @param last the filtered frame before; empty: there is none
  void add(const RestingPlaces& at_rest, const Inverses& raw, const Inverses& filtered,
           const Inverses& last);
};

}  // namespace kit

#endif
