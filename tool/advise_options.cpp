#include "kit/common/text.h"
#include "option_groups.h"

namespace zvfilter {

namespace {

constexpr const char* kAdviseFooter =
    "Looks for values, and without a chain for the filters, that suit a recording. Two thirds of the "
    "frames are searched on,\n"
    "the table is of the others: untouched, with the schemas' defaults, and with what is advised.\n"
    "Without --truth, predictions of the next raw frame, surfaces, places at rest, hidden pixels and "
    "planted speckles say what\n"
    "is good; docs/advise.md says how and how far to trust it. Ctrl-C ends the search with the best so "
    "far.\n"
    "\n"
    "Examples:\n"
    "  zvfilter advise frames/ -o chain.json --report advice.html\n"
    "  zvfilter advise --chain 'NoiseRemovalFilter:; smooth=SpatialAdvancedFilter:' --step smooth "
    "frames/ "
    "-o chain.json\n"
    "  zvfilter advise frames/ --truth truth/ --evaluations 300 --weight missing=0.3 -o chain.json";

/// "60", "60s" or "5m".
std::optional<double> parse_seconds(const std::string& text) {
  const bool minutes = text.ends_with('m');
  const std::string number = minutes || text.ends_with('s') ? text.substr(0, text.size() - 1) : text;
  const auto value = kit::parse_number(number);
  if (!value || *value <= 0 || *value > 86400) return std::nullopt;
  return *value * (minutes ? 60 : 1);
}

}  // namespace

void describe_advise(CLI::App& command, AdviseOptions& advise) {
  describe_chain(command, advise.run);
  command.add_option("-o,--output", advise.output, "The chain file to write")
      ->required()
      ->type_name("FILE");
  command.add_option("--report", advise.run.report.file, "Also write a page (HTML in one file) about it")
      ->type_name("FILE");
  command
      .add_option_function<std::string>(
          "--budget", [&advise](const std::string& text) { advise.seconds = *parse_seconds(text); },
          "Time to search, 60s by default; how far the search gets depends on the machine")
      ->check(expect("a time such as 30s or 5m",
                     [](const std::string& text) { return parse_seconds(text).has_value(); }))
      ->type_name("TIME");
  command
      .add_option("--evaluations", advise.evaluations,
                  "Instead, chains to try: the same answer every time and for any -j")
      ->check(CLI::Range(1, 1000000).description(""))
      ->excludes("--budget")
      ->type_name("N");
  command.add_option("--seed", advise.seed, "Of the search, 1 by default")->type_name("N");
  command
      .add_option("--weight", advise.weights,
                  "What a measure counts: missing, median, p95, off, flicker, roughness or speckles")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE");
  command
      .add_option("--step", advise.step,
                  "The only step of the chain whose values are looked for, by tag, filter or number")
      ->type_name("STEP");
  command.add_flag("--own-truth", advise.with_truth, "Use the truth that camera: brings");
  describe_sequence(command, advise.run);
  describe_jobs(command, advise.run);
  command.footer(kAdviseFooter);
}

}  // namespace zvfilter
