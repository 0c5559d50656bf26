#include <algorithm>
#include <ostream>

#include "commands.h"
#include "kit/chain/chain_file.h"
#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/texts/filter_texts.h"
#include "kit/texts/presets.h"
#include "wrapped.h"

namespace zvfilter {

namespace {

void print_parameter(const std::string& filter, const kit::SchemaParameter& p, std::ostream& out) {
  out << '\n'
      << p.name << ": " << p.min << " to " << p.max << ", step " << p.step << ", default "
      << p.default_value;
  const kit::ParameterText* text = kit::text_of(filter, p.name);
  if (text == nullptr) {
    out << '\n';
    print_wrapped("  ", p.description, out);
    return;
  }
  if (!text->unit.empty()) out << "; " << text->unit;
  out << '\n';
  print_wrapped("  ", text->meaning, out);
  for (const kit::ChoiceText& choice : text->choices)
    print_wrapped(kit::concat("    ", choice.value, "  ", choice.name, ": "), choice.meaning, out);
  if (!text->direction.empty()) print_wrapped("  -> ", text->direction, out);
}

void print_overview(const std::vector<std::string>& names, std::ostream& out) {
  std::size_t width = 0;
  for (const std::string& name : names) width = std::max(width, name.size());
  for (const std::string& name : names) {
    const kit::FilterText* text = kit::text_of(name);
    out << name << std::string(width + 2 - name.size(), ' ')
        << (text != nullptr ? text->summary : std::string_view("not described")) << '\n';
  }
  out << "\nzvfilter help FILTER says when to use one and what its parameters mean.\n"
         "zvfilter presets lists chains of them for common purposes.\n";
}

}  // namespace

void help_command(const kit::FilterLibrary& library, const std::string& filter, std::ostream& out) {
  if (filter.empty()) return print_overview(library.names(), out);
  const std::vector<kit::SchemaParameter> parameters = library.create(filter).parameters();
  const kit::FilterText* text = kit::text_of(filter);
  if (text != nullptr) {
    print_wrapped("", kit::concat(filter, " ", text->summary, "."), out);
    out << '\n';
    print_wrapped("Use it    ", text->use, out);
    print_wrapped("Mind      ", text->avoid, out);
    print_wrapped("As made   ", text->as_made, out);
    out << "          That is \"" << filter << "\" without a colon; \"" << filter
        << ":\" has the defaults.\n";
  } else {
    out << filter << " is not described; its own words:\n";
  }
  for (const kit::SchemaParameter& p : parameters) print_parameter(filter, p, out);
}

void presets_command(const std::string& name, std::ostream& out) {
  if (!name.empty()) {
    out << kit::preset_named(name).chain;
    return;
  }
  for (const kit::Preset& preset : kit::presets()) {
    out << preset.name << '\n';
    print_wrapped("  ", kit::parse_chain(preset.chain, std::string(preset.name)).description, out);
  }
}

}  // namespace zvfilter
