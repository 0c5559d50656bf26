#include "kit/texts/presets.h"

#include <string>
#include <vector>

#include "kit/common/error.h"
#include "kit/common/suggestions.h"

namespace kit {

namespace {

constexpr Preset kPresets[] = {
#include "presets.inc"  // made of the files in presets/
};

}  // namespace

std::span<const Preset> presets() { return kPresets; }

const Preset& preset_named(std::string_view name) {
  std::vector<std::string> known;
  for (const Preset& preset : kPresets) {
    if (preset.name == name) return preset;
    known.emplace_back(preset.name);
  }
  refuse("unknown preset ", name, "; ", suggest(name, known));
}

}  // namespace kit
