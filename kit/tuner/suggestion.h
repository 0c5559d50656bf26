#ifndef KIT_TUNER_SUGGESTION_H
#define KIT_TUNER_SUGGESTION_H

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

#include "kit/chain/chain.h"
#include "kit/filter/filter_library.h"
#include "kit/tuner/frame_cache.h"

namespace kit::tuner {

/// A page's wish for values that suit the sequence.
struct SuggestionRequest {
  Chain chain;                           ///< empty: the filters are looked for as well
  std::optional<std::size_t> step = {};  ///< whose values alone are looked for
  double seconds = 0;                    ///< 1 to 60
};

/// Fields chain (the steps of a chain file), step (a number from 0, or null), seconds.
/// @throws Error naming the field that is wrong
SuggestionRequest parse_suggestion_request(std::string_view text);

/// The chain suggested and what is to be said of it, as JSON: chain (steps), helps (whether it is better than none), left (what
/// is left of the untouched frames' errors, 1 being all), sentences.
/// @param use_truth judge by the truth, where the sequence has it
/// @param stop ends the search, which takes all processors
std::string suggest(const FilterLibrary& library, FrameCache& frames, const SuggestionRequest& request,
                    bool use_truth, const std::atomic<bool>& stop);

}  // namespace kit::tuner

#endif
