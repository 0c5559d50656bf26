#include <cmath>
#include <ostream>

#include "commands.h"
#include "interruption.h"
#include "kit/advise/footage.h"
#include "kit/common/error.h"
#include "kit/pipeline/sequence.h"
#include "kit/pipeline/workers.h"
#include "progress.h"
#include "report.h"
#include "run_report.h"
#include "run_setup.h"
#include "wrapped.h"

namespace zvfilter {

namespace {

/// What is asked for; the footage is not in it yet.
kit::AdviceRequest request_of(AdviseOptions& options) {
  RunOptions& run = options.run;
  kit::AdviceRequest request;
  const bool has_chain = !run.filters.empty() || !run.chain.empty() || !run.preset.empty();
  if (has_chain) request.chain = open_chain(run);
  if (!has_chain && !run.settings.empty())
    kit::refuse("--set is for the steps of a chain, and none is given");
  if (!options.step.empty()) {
    request.step = kit::find_step(request.chain, options.step);
    if (!request.step)
      kit::refuse("--step ", options.step, ": the chain has no such step, or more than one");
  }
  request.seed = options.seed;
  request.evaluations = options.evaluations;
  request.seconds = options.seconds;
  request.stop = Interruption::asked;
  return request;
}

/// How much was looked at, and how the same is found again.
std::string extent_of(const kit::Advice& advice, const AdviseOptions& options) {
  if (options.evaluations)
    return kit::concat(advice.evaluations, " evaluations, seed ", options.seed, ".");
  if (advice.evaluations == 0) return "No evaluation in the time given; a longer --budget finds more.";
  return kit::concat(advice.evaluations, " evaluations in the time given; --evaluations ",
                     advice.evaluations, " makes the answer the same every time.");
}

kit::ReportTable table_of(const kit::Advice& advice, const AdviseOptions& options) {
  kit::ReportTable table{advice.held_out ? "On frames held out" : "On the frames searched on", {}, {}};
  std::vector<std::string> heading = {"measure"};
  for (const kit::AdviceRow& row : advice.rows) heading.push_back(row.name);
  heading.insert(heading.end(), {"weight", "limit"});
  table.rows.push_back(std::move(heading));
  for (const kit::MeasureText& text : kit::measure_texts()) {
    if (!advice.rows.front().measures[text.measure]) continue;
    std::vector<std::string> cells = {std::string(text.name)};
    for (const kit::AdviceRow& row : advice.rows)
      cells.push_back(kit::value_text(text.measure, row.measures[text.measure], advice.with_truth));
    cells.push_back(kit::concat(advice.weights[static_cast<std::size_t>(text.measure)]));
    cells.push_back(text.limit ? kit::concat('+', 100 * *text.limit, " %") : "");
    table.rows.push_back(std::move(cells));
  }
  std::vector<std::string> total = {"all, weighted"};
  for (const kit::AdviceRow& row : advice.rows)
    total.push_back(kit::concat(std::round(1000 * row.loss) / 1000));
  total.insert(total.end(), {"", ""});
  table.rows.push_back(std::move(total));
  table.sentences = advice.reasons;
  table.sentences.insert(table.sentences.end(), advice.remarks.begin(), advice.remarks.end());
  table.sentences.push_back(extent_of(advice, options));
  return table;
}

void print(const kit::Advice& advice, const kit::ReportTable& table, std::ostream& out) {
  out << table.title << ":\n";
  print_table(table.rows, out);
  out << '\n';
  for (const kit::MeasureText& text : kit::measure_texts()) {
    if (!advice.rows.front().measures[text.measure]) continue;
    print_wrapped(kit::concat("  ", text.name, ": "),
                  advice.with_truth ? text.with_truth : text.without_truth, out);
  }
  out << '\n';
  for (const std::string& sentence : table.sentences) print_wrapped("", kit::printable(sentence), out);
}

/// The page of the advised chain at work on frames that were held out, or else on all.
void write_report(const kit::FilterLibrary& library, const RunOptions& options, const kit::Chain& chain,
                  const kit::FrameSource& whole, const kit::ReportTable& table) {
  const kit::Split split = kit::split_frames(whole.names.size());
  const kit::Clip clip = split.held_out.empty() ? split.search.front() : split.held_out.front();
  kit::FrameSource source;
  source.names.assign(whole.names.begin() + static_cast<std::ptrdiff_t>(clip.first),
                      whole.names.begin() + static_cast<std::ptrdiff_t>(clip.first + clip.count));
  source.load = [&](std::size_t index) { return whole.load(clip.first + index); };
  kit::Pipeline pipeline(library, chain);
  RunReport page(options, pipeline, source, {table});
  kit::SequenceVisitor visitor;
  kit::ChainResults results(pipeline.chain());
  visitor.on_passage = [&](const kit::SourceFrame& input, const kit::Passage& passage) {
    page.add(passage, results.add(passage, input.truth));
  };
  visitor.on_filtered = [&](std::size_t index, const kit::SourceFrame& input, const kit::FrameView&) {
    page.end_frame(index, input);
  };
  kit::run_sequence(source, pipeline, {}, visitor);
  page.write(results);
}

}  // namespace

void advise_command(const kit::FilterLibrary& library, AdviseOptions options, std::ostream& out,
                    std::ostream& notes) {
  RunOptions& run = options.run;
  kit::AdviceRequest request = request_of(options);
  if (options.output.empty()) kit::refuse("the chain file to write has no name");
  std::vector<Sequence> sequences = open_sequences(run, notes);
  if (sequences.size() > 1) kit::refuse("several folders; expected one recording to advise on");
  const kit::FrameSource& source = sequences.front().source;
  const kit::Workers workers(run.jobs);
  const Interruption interruption;
  request.for_each = [&](std::size_t count, const std::function<void(std::size_t)>& work) {
    workers.for_each(count, work);
  };
  const auto load = [&](std::size_t index) -> kit::FrameAndTruth {
    kit::SourceFrame loaded = source.load(index);
    return {std::move(loaded.frame), std::move(loaded.truth)};
  };
  request.footage = kit::load_footage(source.names.size(), load, request.for_each);
  // The virtual camera brings its truth, but it is there to be tried as a camera is.
  if (run.camera_input && !options.with_truth) request.footage.truth.clear();
  if (!run.camera_input) note_nominal_camera(run, kit::sensible_orders({}, false).front(), notes);
  if (!options.weights.empty()) {
    request.weights = kit::default_weights(!request.footage.truth.empty());
    for (const std::string& weight : options.weights) kit::set_weight(*request.weights, weight);
  }
  std::optional<Progress> progress;
  request.progress = [&](const kit::AdviceProgress& now) {
    if (!progress) progress.emplace(now.limit);
    progress->show(now.evaluations, kit::concat("  best ", std::round(1000 * now.loss) / 1000));
  };
  const kit::Advice advice = kit::advise(library, request);
  progress.reset();

  const kit::ReportTable table = table_of(advice, options);
  print(advice, table, out);
  const std::string text = kit::chain_json({kit::concat("Advised for ", kit::join(run.inputs, " "), "."),
                                            run.attributes.camera, advice.chain});
  kit::write_text(options.output, text, kit::Durability::synced);
  if (!run.report.file.empty()) write_report(library, run, advice.chain, source, table);
  out << kit::printable(kit::chain_text(advice.chain)) << "\nwritten to "
      << kit::printable(options.output.string()) << '\n';
  if (Interruption::asked())
    throw Stopped(
        kit::printable(kit::concat("stopped; ", options.output.string(), " has the best so far")));
}

}  // namespace zvfilter
