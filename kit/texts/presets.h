#ifndef KIT_TEXTS_PRESETS_H
#define KIT_TEXTS_PRESETS_H

#include <span>
#include <string_view>

namespace kit {

/// A chain for a purpose, as the file that is installed says it.
struct Preset {
  std::string_view name;
  std::string_view chain;  ///< the text of a chain file
};

/// In the order of their names.
std::span<const Preset> presets();

/// @throws Error for an unknown name, with the nearest ones
const Preset& preset_named(std::string_view name);

}  // namespace kit

#endif
