#ifndef GSTREAMER_INPUT_PROPERTIES_H
#define GSTREAMER_INPUT_PROPERTIES_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include <glib-object.h>

#include "zvfilter/zvfilter.h"

namespace zvgst {

inline constexpr std::size_t kInputProperties = 16;
/// What was set of them; their order is that of the table.
using InputValues = std::array<std::optional<double>, kInputProperties>;

/// Gives an element's class the properties that say what samples mean, numbered from 1.
void install_input_properties(GObjectClass* element);
/// What it is where nothing was set.
double default_of(std::size_t property);
/// The number that a value of any number's type, a flag or an enumeration stands for, and back.
double number_of(const GValue* value);
void set_number(GValue* value, double number);

/// Puts what was set into `input`.
/// @return what is missing beside it; empty: nothing
std::string put_values(const InputValues& values, zvf_input& input);

}  // namespace zvgst

#endif
