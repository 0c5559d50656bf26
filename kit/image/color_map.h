#ifndef KIT_IMAGE_COLOR_MAP_H
#define KIT_IMAGE_COLOR_MAP_H

#include "kit/image/image.h"

namespace kit {

/// Blue over green to red for 0 to 1; values outside are taken for the nearer end.
Rgb rainbow(double value);

}  // namespace kit

#endif
