#ifndef KIT_ADVISE_SPACE_H
#define KIT_ADVISE_SPACE_H

#include <optional>
#include <string>
#include <vector>

#include "kit/advise/planting.h"
#include "kit/chain/pipeline.h"

namespace kit {

/// A value that may be chosen.
struct Gene {
  std::size_t step;
  std::string key;
  double min, max, unit;  ///< the schema's range where it makes sense, and its step
  int decimals;           ///< of the unit
  bool even_ratios;       ///< equal ratios are equal distances
  bool choice;            ///< its values have names and no order

  /// From 0 to 1, and as a text that the filter takes.
  double place_of(double value) const;
  std::string text_at(double place) const;
  std::size_t values() const;
};

/// The chains that one order of steps allows.
class Space {
 public:
  /// @param steps that stay as they are but for what is chosen; those in `optional` may be off
  /// @param only the one step whose values are chosen; nothing: all of them
  Space(const FilterLibrary& library, Chain steps, const Input& input, std::vector<std::size_t> optional,
        std::optional<std::size_t> only = {});

  const Chain& start() const { return start_; }  ///< with the values of the steps, or else the defaults
  const std::vector<Gene>& genes() const { return genes_; }
  const std::vector<std::size_t>& optional_steps() const { return optional_; }

  double place(const Chain& chain, const Gene& gene) const;
  Chain with(Chain chain, const Gene& gene, double place) const;
  Chain random(Chance& chance) const;

 private:
  Chain start_;
  std::vector<Gene> genes_;
  std::vector<std::size_t> optional_;
};

/// The orders of steps that are tried where nobody gives one.
std::vector<Chain> sensible_orders(const Input& input, bool single_frame);
/// What frames go through in any case: disparity becomes depth.
Chain conversion(const Input& input);
/// The same steps, with the schemas' defaults of all that could be chosen.
Chain with_defaults(const Chain& chain);

}  // namespace kit

#endif
