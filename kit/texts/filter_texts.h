#ifndef KIT_TEXTS_FILTER_TEXTS_H
#define KIT_TEXTS_FILTER_TEXTS_H

#include <span>
#include <string>
#include <string_view>

namespace kit {

/// One of the whole numbers that a parameter chooses by.
struct ChoiceText {
  int value;
  std::string_view name;
  std::string_view meaning;
};

struct ParameterText {
  std::string_view name;
  std::string_view unit;  ///< empty: a plain number
  std::string_view meaning;
  std::string_view direction = {};  ///< what a larger value does; empty where there is no such thing
  std::span<const ChoiceText> choices = {};
};

/// What somebody who sets up a chain has to know of a filter. The ranges are in its schema.
struct FilterText {
  std::string_view name;
  std::string_view summary;
  std::string_view use;      ///< when
  std::string_view avoid;    ///< when not, and what it costs
  std::string_view as_made;  ///< what the filter does when nobody gives it values
  std::span<const ParameterText> parameters = {};
};

/// In the order of the filters.
std::span<const FilterText> filter_texts();

/// Null for what is not known.
const FilterText* text_of(std::string_view filter);
const ParameterText* text_of(std::string_view filter, std::string_view parameter);

/// "0 top, 1 nearest, 2 farthest"; empty without choices.
std::string names_of(std::span<const ChoiceText> choices);

}  // namespace kit

#endif
