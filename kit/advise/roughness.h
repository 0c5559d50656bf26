#ifndef KIT_ADVISE_ROUGHNESS_H
#define KIT_ADVISE_ROUGHNESS_H

#include "kit/advise/error_counts.h"
#include "kit/advise/lattice.h"

namespace kit {

/// How uneven surfaces are. The inverse depths of a plane grow evenly over the frame, so what an inverse depth lacks of the mean
/// of its neighbours left and right, or above and below, is noise, pattern or relief. It sees what no later frame shows:
/// errors that stay.
void add_roughness(const Inverses& filtered, const Lattice& lattice, ErrorCounts& errors);

}  // namespace kit

#endif
