#ifndef KIT_ADVISE_ADVICE_H
#define KIT_ADVISE_ADVICE_H

#include <optional>
#include <string>
#include <vector>

#include "kit/advise/search.h"

namespace kit {

/// What is asked for.
struct AdviceRequest {
  /// Frames that split_frames() gives to neither part may be without pixels.
  Footage footage = {};
  /// Whose values are looked for; empty: sensible orders of filters are tried.
  Chain chain = {};
  std::optional<std::size_t> step = {};  ///< of the chain, whose values alone are looked for
  std::optional<Weights> weights = {};   ///< nothing: default_weights()
  std::uint64_t seed = 1;
  /// Of chains on frames. With them the answer depends on the request alone; without, on the time as well.
  std::optional<std::size_t> evaluations = {};
  double seconds = 60;    ///< without evaluations
  ForEach for_each = {};  ///< empty: one after the other
  std::function<bool()> stop = {};
  std::function<void(const AdviceProgress&)> progress = {};
};

/// A chain and what it was measured at.
struct AdviceRow {
  std::string name;
  Chain chain;
  Measures measures;
  double loss = 1;  ///< mean_of()
};

struct Advice {
  Chain chain;        ///< with its values
  bool helps = true;  ///< better than untouched frames
  bool with_truth = false;
  bool held_out = true;  ///< rows are of frames that the search has not seen
  Weights weights = {};
  std::vector<AdviceRow> rows;       ///< untouched, defaults, advised
  std::vector<std::string> reasons;  ///< a sentence a step
  std::vector<std::string> remarks;  ///< what limits the answer
  std::size_t evaluations = 0;
};

/// Values that suit the footage.
/// @throws Error for a request that makes no sense, and when a chain takes no such frames
Advice advise(const FilterLibrary& library, const AdviceRequest& request);

/// The frames that are searched on, and those that are held out: none of them are both measured.
struct Split {
  std::vector<Clip> search, held_out;
};
Split split_frames(std::size_t frames);

}  // namespace kit

#endif
