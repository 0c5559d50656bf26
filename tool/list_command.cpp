#include <algorithm>
#include <iomanip>
#include <ostream>

#include "commands.h"

namespace zvfilter {

namespace {

void print_parameters(const std::vector<kit::SchemaParameter>& schema, std::ostream& out) {
  std::size_t width = 0;
  for (const kit::SchemaParameter& p : schema) width = std::max(width, p.name.size());
  for (const kit::SchemaParameter& p : schema) {
    out << "     " << std::left << std::setw(static_cast<int>(width)) << p.name << "  " << std::setw(8)
        << p.type << "  " << p.min << " to " << p.max << ", step " << p.step << ", default "
        << p.default_value << '\n';
  }
}

}  // namespace

void list_command(const kit::Plugin& plugin, bool json, std::ostream& out) {
  const std::vector<kit::FilterDescription> filters = plugin.describe();
  if (json) {
    out << kit::to_json(filters) << '\n';
    return;
  }
  for (std::size_t i = 0; i < filters.size(); ++i) {
    out << i << "  " << filters[i].name << (filters[i].available ? "" : "  (not available)") << '\n';
    print_parameters(filters[i].parameters, out);
  }
  const std::string level = plugin.level();
  if (!level.empty()) out << "The kernels run at level " << level << ".\n";
}

void schema_command(const kit::Plugin& plugin, const std::string& filter, std::ostream& out) {
  out << plugin.create(filter).schema();
}

}  // namespace zvfilter
