#ifndef KIT_ADVISE_TRIAL_H
#define KIT_ADVISE_TRIAL_H

#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "kit/advise/holes.h"
#include "kit/advise/measures.h"
#include "kit/advise/planting.h"
#include "kit/advise/rest.h"
#include "kit/chain/pipeline.h"
#include "kit/measure/accuracy.h"

namespace kit {

/// Frames that follow each other, and their truth where it is known: none, or one each.
struct Footage {
  bool has_geometry = true;  ///< the frames' disparity parameters are known
  std::vector<Frame> frames;
  std::vector<Image> truth;
};

/// A part of the footage: a chain begins with its first frame and is measured on those from `measured` on.
struct Clip {
  std::size_t first, count, measured;
};

/// Chains at work on parts of the footage, by any number of threads at once.
class Trials {
 public:
  /// @param with_truth measure against it; else as if there were none
  /// @throws Error when frames differ in size or in what they are
  Trials(const FilterLibrary& library, const Footage& footage, bool with_truth, std::uint64_t seed);
  ~Trials();

  /// What the clips say of the chain.
  /// @throws Error when the chain takes no such frames, or changes their size
  Measures run(const Chain& chain, const std::vector<Clip>& clips);

  const Input& input() const { return input_; }
  bool with_truth() const { return with_truth_; }

 private:
  struct Pieces;
  struct Made;
  struct Tally;

  std::shared_ptr<const Made> make(const Chain& chain, const Clip& clip, bool planted);
  const Frame& source(std::size_t frame, bool planted) const;
  const RestingPlaces& resting(const Clip& clip);
  void measure(const Made& made, const Clip& clip, Tally& tally);
  void measure_planted(const Made& made, const Clip& clip, Tally& tally) const;
  std::shared_ptr<const Made> find(const std::string& key);
  void keep(const std::string& key, std::shared_ptr<const Made> made);

  FilterLibrary library_;
  const Footage& footage_;
  bool with_truth_;
  Input input_;
  Lattice lattice_;
  std::vector<Inverses> raw_;  // of the lattice, by frame
  std::vector<Inverses> surfaces_, behind_;
  std::vector<Image> truth_;  // of the lattice
  std::vector<Frame> planted_;
  std::vector<std::vector<Planted>> hidden_, speckles_;
  std::mutex mutex_;  // of what follows
  std::map<std::pair<std::size_t, std::size_t>, std::shared_ptr<const RestingPlaces>> resting_;
  std::list<std::pair<std::string, std::shared_ptr<const Made>>> kept_;  // the last used first
  std::size_t kept_bytes_ = 0;
};

}  // namespace kit

#endif
