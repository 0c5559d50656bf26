#ifndef KIT_ADVISE_SEARCH_H
#define KIT_ADVISE_SEARCH_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kit/advise/space.h"
#include "kit/advise/trial.h"

namespace kit {

/// Does the work for every number below count, by any threads and in any order.
using ForEach = std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)>;

/// How far a search has come.
struct AdviceProgress {
  std::size_t evaluations = 0;
  std::size_t limit = 0;
  double loss = 1;  ///< of the best chain so far; 1 is that of the untouched frames
  Chain best;
};

struct SearchSettings {
  std::size_t evaluations;  ///< the most, of one chain on some frames each
  std::uint64_t seed;
  bool keep_chain;  ///< the answer is a chain of the space even if untouched frames are better
  ForEach for_each;
  std::function<bool()> stop;  ///< asked between batches; may be empty
  std::function<void(const AdviceProgress&)> progress;
};

/// The search: successive halving over frames and candidates of all spaces, then a local search from the best.
class Search {
 public:
  Search(Trials& trials, const std::vector<Space>& spaces, std::vector<Clip> clips,
         const Weights& weights, SearchSettings settings);

  struct Candidate {
    Chain chain;
    std::size_t space;
    double loss = 0;
  };
  /// The best, on all clips. Stopped early: the best so far.
  Candidate run();

  /// On all clips.
  double loss(const Chain& chain);
  const Measures& untouched() const { return untouched_.back(); }
  std::size_t evaluations() const { return spent_; }

 private:
  /// @return false when it was stopped; what is not evaluated is taken out
  bool evaluate(std::vector<Candidate>& candidates, std::size_t rung);
  std::vector<Candidate> first_candidates();
  std::vector<Candidate> neighbours(const Candidate& centre, double step);
  /// The centre with every change of one thing that made it better.
  Chain combined(const Candidate& centre, std::vector<Candidate> around) const;
  /// The best on all frames, or the first of the candidates, which were seen on fewer, if it is better there.
  Candidate best_with(const std::vector<Candidate>& candidates);
  Candidate refine(Candidate centre, std::size_t until);
  bool stopped() const { return settings_.stop && settings_.stop(); }

  Trials& trials_;
  const std::vector<Space>& spaces_;
  const Weights& weights_;
  SearchSettings settings_;
  Chance chance_;
  std::vector<std::vector<Clip>> rungs_;  // from few frames to all
  std::vector<Measures> untouched_;       // by rung
  std::map<std::string, double> known_;   // losses on all clips
  std::size_t spent_ = 0;
  Candidate best_;
};

/// The chain as a text, with the steps that are on.
std::string chain_text(const Chain& chain);

}  // namespace kit

#endif
