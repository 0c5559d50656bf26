/// Faults of real cameras that the matching of two clean pictures lacks.
#ifndef FILTERPROCESSOR_HOST_CAMERA_FAULTS_H
#define FILTERPROCESSOR_HOST_CAMERA_FAULTS_H

#include <cstdint>

#include "block_matching.h"
#include "camera_scene.h"

namespace devhost {

struct CameraFaults {
  float noise =
      0;  ///< deviation of the disparity in pixels, 0 to 4, of a surface 1 m away that faces the camera
  float speckle = 0;  ///< share of the pixels that another projector's pattern spoils, 0 to 0.3
  float dropouts =
      0;  ///< how likely a pixel at an edge, or of a dark or shiny surface, is missing, 0 to 1

  bool any() const { return noise > 0 || speckle > 0 || dropouts > 0; }
};

struct MatchedView {
  const Picture& left;        ///< with margins and glances
  std::uint32_t disparities;  ///< the search went up to this
};

/// Spoils a match. `salt` is the moment's.
void add_faults(const CameraFaults& faults, const MatchedView& view, std::uint64_t salt, Match& match);

}  // namespace devhost

#endif
