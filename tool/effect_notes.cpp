#include "effect_notes.h"

#include <algorithm>
#include <ostream>

#include "kit/common/text.h"
#include "kit/filter/filter_effects.h"

namespace zvfilter {

EffectNotes::EffectNotes(const kit::Chain& chain, std::ostream& notes)
    : chain_(chain), notes_(notes), steps_(chain.size()) {}

void EffectNotes::add(const kit::Passage& passage) {
  if (passage.number == 0) return;
  const std::size_t number = passage.number - 1;
  const kit::Step& step = chain_[number];
  StepPixels& pixels = steps_[number];
  if (!pixels.seen) {
    for (const std::string& note : kit::missing_effects(
             step.filter, step.values, passage.before.pixel_type, passage.before.correction != 0)) {
      notes_ << "zvfilter: note: " << kit::printable(kit::step_name(chain_, number)) << ": " << note
             << '\n';
    }
  }
  pixels.seen = true;
  const auto exempt = kit::exempt_values(step.filter, step.values, passage.before.pixel_type);
  if (!exempt) return;
  const auto& values = passage.before.pixels;
  pixels.all += values.size();
  pixels.exempt += static_cast<std::uint64_t>(
      std::count_if(values.begin(), values.end(),
                    [first = exempt->first](std::uint16_t value) { return value >= first; }));
}

void EffectNotes::print_exempt() const {
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    const StepPixels& pixels = steps_[i];
    if (pixels.exempt * 100 <= pixels.all) continue;
    for (const std::int32_t type : {ZV_PIXEL_TYPE_DEPTH, ZV_PIXEL_TYPE_DISPARITY}) {
      const auto exempt = kit::exempt_values(chain_[i].filter, chain_[i].values, type);
      if (!exempt) continue;
      notes_ << "zvfilter: note: " << kit::printable(kit::step_name(chain_, i)) << ": "
             << pixels.exempt * 100 / pixels.all << " % of the pixels have values from " << exempt->first
             << " up, which " << exempt->treatment << '\n';
      break;
    }
  }
}

}  // namespace zvfilter
