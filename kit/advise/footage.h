#ifndef KIT_ADVISE_FOOTAGE_H
#define KIT_ADVISE_FOOTAGE_H

#include <functional>
#include <optional>
#include <utility>

#include "kit/advise/advice.h"

namespace kit {

using FrameAndTruth = std::pair<Frame, std::optional<Image>>;

/// A recording of `count` frames, as far as advise() looks at it: the other frames stay without pixels.
/// @param load gives a frame by its number, on the threads of `for_each`
Footage load_footage(std::size_t count, const std::function<FrameAndTruth(std::size_t)>& load,
                     const ForEach& for_each);

}  // namespace kit

#endif
