#ifndef ZVFILTER_EFFECT_NOTES_H
#define ZVFILTER_EFFECT_NOTES_H

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "kit/pipeline/sequence.h"

namespace zvfilter {

/// Says what of a chain has no effect on the frames of a run, each thing once.
class EffectNotes {
 public:
  EffectNotes(const kit::Chain& chain, std::ostream& notes);
  /// The steps are told from the first frame that reaches them.
  void add(const kit::Passage& passage);
  /// At the end: which steps left more than a hundredth of the pixels alone because of their values.
  void print_exempt() const;

 private:
  struct StepPixels {
    bool seen = false;
    std::uint64_t all = 0;
    std::uint64_t exempt = 0;
  };

  const kit::Chain& chain_;
  std::ostream& notes_;
  std::vector<StepPixels> steps_;
};

}  // namespace zvfilter

#endif
