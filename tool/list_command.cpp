#include <algorithm>
#include <iomanip>
#include <ostream>

#include "commands.h"
#include "kit/texts/filter_texts.h"

namespace zvfilter {

namespace {

void print_parameters(const kit::FilterDescription& filter, std::ostream& out) {
  std::size_t width = 0;
  for (const kit::SchemaParameter& p : filter.parameters) width = std::max(width, p.name.size());
  for (const kit::SchemaParameter& p : filter.parameters) {
    out << "     " << std::left << std::setw(static_cast<int>(width)) << p.name << "  " << std::setw(8)
        << p.type << "  " << p.min << " to " << p.max << ", step " << p.step << ", default "
        << p.default_value;
    const kit::ParameterText* text = kit::text_of(filter.name, p.name);
    if (text != nullptr && !text->direction.empty()) out << "; " << text->direction;
    if (text != nullptr && !text->choices.empty()) out << "; " << kit::names_of(text->choices);
    out << '\n';
  }
}

}  // namespace

void list_command(const kit::FilterLibrary& library, bool json, std::ostream& out) {
  const std::vector<kit::FilterDescription> filters = library.describe();
  if (json) {
    out << kit::to_json(filters) << '\n';
    return;
  }
  for (std::size_t i = 0; i < filters.size(); ++i) {
    out << i << "  " << filters[i].name;
    if (!filters[i].available) out << "  (not available)";
    const kit::FilterText* text = kit::text_of(filters[i].name);
    if (text != nullptr) out << ": " << text->summary;
    out << '\n';
    print_parameters(filters[i], out);
  }
  const std::string level = library.level();
  if (!level.empty()) out << "The kernels run at level " << level << ".\n";
  out << "zvfilter help FILTER says more.\n";
}

void schema_command(const kit::FilterLibrary& library, const std::string& filter, std::ostream& out) {
  out << library.create(filter).schema();
}

}  // namespace zvfilter
