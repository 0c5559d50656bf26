#include <ostream>

#include "commands.h"
#include "kit/chain/pipeline.h"
#include "kit/common/error.h"
#include "kit/common/files.h"

namespace zvfilter {

namespace {

void print_step(const kit::Pipeline& pipeline, std::size_t number, std::ostream& out) {
  const kit::Step& step = pipeline.chain()[number];
  out << number + 1 << "  " << step.filter;
  if (!step.tag.empty()) out << "  tag " << step.tag;
  if (!step.enabled) out << "  off";
  if (!step.values) out << "  as it is made";
  out << '\n';
  if (!step.values) return;
  for (const kit::SchemaParameter& parameter : pipeline.parameters(number)) {
    const auto given = step.values->find(parameter.name);
    out << "     " << parameter.name << " = ";
    if (given != step.values->end()) {
      out << given->second << '\n';
    } else {
      out << parameter.default_value << "  (default)\n";
    }
  }
}

std::string as_text(const kit::ChainFile& chain) {
  if (chain.input || !chain.description.empty()) {
    kit::refuse("the chain has ", chain.input ? "an input" : "a description",
                ", which only a chain file can say; steps have no room for it");
  }
  std::string text;
  for (const kit::Step& step : chain.steps) text += kit::step_text(step) + '\n';
  return text;
}

}  // namespace

void override_values(kit::Chain& chain, const std::vector<std::string>& settings) {
  for (const std::string& setting : settings) {
    const auto dot = setting.find('.'), equals = setting.find('=');
    if (dot == std::string::npos || equals == std::string::npos || equals < dot ||
        equals + 1 == setting.size()) {
      kit::refuse("--set ", setting, ": expected TAG.key=value, with a step's tag, filter or number");
    }
    const std::string name = setting.substr(0, dot), key = setting.substr(dot + 1, equals - dot - 1);
    const std::string value = setting.substr(equals + 1);
    const auto step = kit::find_step(chain, name);
    if (!step) {
      std::vector<std::string> known;
      for (const kit::Step& each : chain) known.push_back(each.tag.empty() ? each.filter : each.tag);
      kit::refuse("--set ", setting, ": the chain has no step ", name,
                  ", or more than one; steps: ", kit::join(known, ", "));
    }
    if (key == "enabled") {
      if (value != "true" && value != "false") kit::refuse("--set ", setting, ": expected true or false");
      chain[*step].enabled = value == "true";
      continue;
    }
    if (!chain[*step].values) chain[*step].values.emplace();
    (*chain[*step].values)[key] = value;
  }
}

void chain_check_command(const kit::FilterLibrary& library, const std::vector<std::string>& chains,
                         std::ostream& out) {
  for (const std::string& each : chains) {
    const kit::ChainFile chain = read_chain(each);
    const kit::Pipeline pipeline(library, chain.steps);
    out << kit::printable(each) << ": " << chain.steps.size()
        << (chain.steps.size() == 1 ? " step" : " steps") << ", right\n";
  }
}

void chain_show_command(const kit::FilterLibrary& library, const std::string& source, std::ostream& out) {
  const kit::ChainFile chain = read_chain(source);
  const kit::Pipeline pipeline(library, chain.steps);
  if (!chain.description.empty()) out << kit::printable(chain.description) << "\n\n";
  if (chain.input) out << "input " << kit::input_json(*chain.input, true).dump() << "\n\n";
  for (std::size_t i = 0; i < chain.steps.size(); ++i) print_step(pipeline, i, out);
}

void chain_convert_command(const kit::FilterLibrary& library, const ChainConvertOptions& options,
                           std::ostream& out) {
  kit::ChainFile chain = read_chain(options.source);
  override_values(chain.steps, options.settings);
  const kit::Pipeline checked(library, chain.steps);
  const std::string text = options.to_text ? as_text(chain) : kit::chain_json(chain);
  if (options.output.empty()) {
    out << text;
  } else {
    kit::write_text(options.output, text, kit::Durability::synced);
  }
}

void chain_schema_command(const kit::FilterLibrary& library, std::ostream& out) {
  out << kit::chain_file_schema(library.describe());
}

}  // namespace zvfilter
