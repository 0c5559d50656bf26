#ifndef KIT_PIPELINE_PIPELINE_H
#define KIT_PIPELINE_PIPELINE_H

#include <functional>
#include <string>
#include <vector>

#include "kit/frame/frame.h"
#include "kit/pipeline/chain.h"
#include "kit/plugin/plugin.h"

namespace kit {

/// A frame on its way through a chain.
struct Stage {
  std::size_t number;   ///< 0: as it came; n: as the chain's n-th step made it
  const Frame& before;  ///< what the step was given; at 0 the frame itself
  const Frame& frame;
  double milliseconds;  ///< that the filter took
};

/// How filters are handed a frame.
enum class Handover { frame, frame_set };

/// A chain at work: its filters, which remember the frames they have seen. Used by one thread at a time.
class Pipeline {
 public:
  /// Takes a line on what a filter will do with values that its schema doesn't allow, before it gets them.
  using OnWarning = std::function<void(const std::string& line)>;
  using OnStage = std::function<void(const Stage& stage)>;

  /// @throws Error for a filter, a key or a value that the plug-in doesn't have or refuses
  Pipeline(const Plugin& plugin, Chain chain, const OnWarning& on_warning = {});

  const Chain& chain() const { return chain_; }

  /// Gives the step other values, or switches it off or on, between frames.
  /// @throws Error as the constructor does; the step keeps its values
  void configure(std::size_t step, Values values, const OnWarning& on_warning = {});
  void enable(std::size_t step, bool enabled) { chain_[step].enabled = enabled; }
  /// Lets the filters forget the frames they have seen.
  void reset();

  /// Sends a frame through the steps that are enabled and returns what they make of it.
  /// @param on_stage is shown the frame as it came and after each step
  /// @throws Error of the filter that fails
  Frame run(const Frame& frame, const OnStage& on_stage = {}, Handover handover = Handover::frame);

 private:
  Chain chain_;
  std::vector<Filter> filters_;
};

}  // namespace kit

#endif
