#include <algorithm>
#include <atomic>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <ostream>
#include <set>
#include <sstream>

#include "commands.h"
#include "destination.h"
#include "effect_notes.h"
#include "interruption.h"
#include "kit/common/error.h"
#include "kit/filter/filter_behaviour.h"
#include "kit/pipeline/sequence.h"
#include "kit/pipeline/workers.h"
#include "progress.h"
#include "report.h"
#include "run_record.h"
#include "run_report.h"
#include "run_setup.h"

namespace zvfilter {

namespace {

/// One sequence at work.
struct Run {
  Run(const kit::FilterLibrary& library, const kit::Chain& chain, Sequence&& opened)
      : sequence(std::move(opened)),
        pipeline(library, chain),
        results(chain),
        effects(pipeline.chain(), said) {}

  Sequence sequence;
  kit::Pipeline pipeline;
  kit::ChainResults results;
  std::ostringstream said;  // of the effects, until the other runs are done
  EffectNotes effects;
  kit::Steadiness steadiness;
  std::optional<RunReport> page;
  std::unique_ptr<Destination> destination;
  std::vector<std::string> problems;  // of frames that failed and were passed over
  std::exception_ptr failure;         // that ended it
};

/// Leaves out the frames that need not be filtered because their results are there.
void resume(Sequence& sequence, std::vector<bool>& present, bool has_history) {
  for (std::size_t i = 0; i < present.size(); ++i) present[i] = exist(sequence.outputs[i]);
  std::vector<std::size_t> kept;
  const auto last_missing = std::find(present.rbegin(), present.rend(), false);
  const auto needed = static_cast<std::size_t>(present.rend() - last_missing);
  for (std::size_t i = 0; i < needed; ++i) {
    if (has_history || !present[i]) kept.push_back(i);
  }
  kit::FrameSource source;
  std::vector<OutputFiles> outputs;
  std::vector<bool> still_present;
  for (const std::size_t i : kept) {
    source.names.push_back(sequence.source.names[i]);
    outputs.push_back(sequence.outputs[i]);
    still_present.push_back(present[i]);
  }
  source.load = [load = sequence.source.load, kept](std::size_t index) { return load(kept[index]); };
  sequence.source = std::move(source);
  sequence.outputs = std::move(outputs);
  present = std::move(still_present);
}

/// The runs of all sequences, side by side.
class Runs {
 public:
  Runs(const kit::FilterLibrary& library, const kit::Chain& chain, const RunOptions& options,
       std::vector<Sequence> sequences);

  void work();
  /// Says what was done and how it went.
  void report(std::ostream& out, std::ostream& notes);

 private:
  void work(std::size_t number, std::size_t frames_in_flight);
  kit::SequenceVisitor visitor(Run& run);
  void say_effects(std::ostream& notes) const;
  void count_done();

  const RunOptions& options_;
  bool streamed_;
  std::deque<Run> runs_;
  std::size_t total_ = 0;     // frames of all sequences
  std::size_t to_write_ = 0;  // those without a result
  std::atomic<std::size_t> written_ = 0;
  std::mutex mutex_;  // of what follows
  std::size_t passed_ = 0;
  std::atomic<std::size_t> first_failed_ = SIZE_MAX;
  std::atomic<bool> stopped_ = false;
  std::optional<Progress> progress_;
};

Runs::Runs(const kit::FilterLibrary& library, const kit::Chain& chain, const RunOptions& options,
           std::vector<Sequence> sequences)
    : options_(options), streamed_(static_cast<bool>(sequences.front().source.next)) {
  const bool has_history = std::any_of(
      chain.begin(), chain.end(), [](const kit::Step& step) { return kit::has_history(step.filter); });
  for (Sequence& sequence : sequences) {
    std::string record = run_record(options, chain, sequence);
    total_ += sequence.source.names.size();
    std::vector<bool> present(sequence.outputs.size());
    if (options.existing == Existing::refuse) expect_none(sequence.outputs);
    if (options.existing == Existing::resume && !is_standard(options.output.folder)) {
      if (std::any_of(sequence.outputs.begin(), sequence.outputs.end(), exist))
        expect_same_run(sequence.folder, record);
      resume(sequence, present, has_history);
    }
    const auto kept = static_cast<std::size_t>(std::count(present.begin(), present.end(), true));
    Run& run = runs_.emplace_back(library, chain, std::move(sequence));
    const kit::FrameSource& source = run.sequence.source;
    if (!options.report.file.empty()) run.page.emplace(options, run.pipeline, source);
    to_write_ += source.names.size() - kept;
    if (is_standard(options.output.folder)) {
      const kit::Codec* const own =
          streamed_ ? nullptr : kit::codec_of_extension(source.names.front().extension);
      run.destination = standard_output(options, own);
    } else {
      run.destination = std::make_unique<FileDestination>(
          options, run.sequence.folder, run.sequence.outputs, std::move(present), std::move(record));
    }
  }
}

void Runs::work() {
  const Interruption interruption;
  const kit::Workers workers(options_.jobs);
  std::size_t frames = 0;
  for (const Run& run : runs_) frames += run.sequence.source.names.size();
  progress_.emplace(frames);
  // Enough that no thread waits for a frame, however the threads are shared.
  const std::size_t sides = std::min(workers.threads(), runs_.size());
  const std::size_t in_flight = workers.threads() == 1 ? 1 : 2 + 2 * workers.threads() / sides;
  workers.for_each(runs_.size(), [&](std::size_t number) { work(number, in_flight); });
  // A stream may have been waiting for its next frame.
  if (streamed_ && Interruption::asked()) stopped_ = true;
  progress_->clear();
}

void Runs::work(std::size_t number, std::size_t frames_in_flight) {
  Run& run = runs_[number];
  kit::SequenceOptions options{options_.handover, frames_in_flight, {}, run.destination->in_order()};
  // Which failure is reported must not depend on which came first: it is that of the first sequence.
  options.stop = [&, number] {
    if (Interruption::asked()) stopped_ = true;
    return stopped_ || first_failed_ < number;
  };
  try {
    kit::run_sequence(run.sequence.source, run.pipeline, options, visitor(run));
    run.steadiness.finish();
  } catch (...) {
    run.failure = std::current_exception();
    for (std::size_t first = first_failed_;
         number < first && !first_failed_.compare_exchange_weak(first, number);) {
    }
  }
}

kit::SequenceVisitor Runs::visitor(Run& run) {
  kit::SequenceVisitor visitor;
  visitor.on_passage = [&run](const kit::SourceFrame& input, const kit::Passage& passage) {
    const kit::AccuracySummary accuracy = run.results.add(passage, input.truth);
    run.effects.add(passage);
    if (run.page) run.page->add(passage, accuracy);
  };
  visitor.on_filtered = [&](std::size_t index, const kit::SourceFrame& input,
                            const kit::FrameView& result) {
    run.steadiness.add(input.frame, result);
    run.destination->see(index, input.frame, result);
    if (run.page) run.page->end_frame(index, input);
  };
  visitor.on_result = [&](std::size_t index, const kit::SourceFrame& input,
                          const kit::FrameView& result) {
    written_ += run.destination->write(index, input.frame, result);
  };
  visitor.on_done = [&](std::size_t) { count_done(); };
  if (options_.keep_going) {
    visitor.on_problem = [&run](const kit::Error& problem) { run.problems.emplace_back(problem.what()); };
  }
  return visitor;
}

void Runs::count_done() {
  const std::lock_guard lock(mutex_);
  progress_->show(++passed_);
}

void Runs::say_effects(std::ostream& notes) const {
  std::set<std::string> said;  // each line once, whichever sequence it is of
  for (const Run& run : runs_) {
    run.effects.print_exempt();
    std::istringstream lines(run.said.str());
    for (std::string line; std::getline(lines, line);) {
      if (said.insert(line).second) notes << line << '\n';
    }
  }
}

void Runs::report(std::ostream& out, std::ostream& notes) {
  std::size_t problems = 0;
  std::exception_ptr failure;
  for (const Run& run : runs_) {
    if (!failure) failure = run.failure;
    problems += run.problems.size();
    for (const std::string& problem : run.problems) notes << "zvfilter: " << problem << '\n';
  }
  const std::size_t due = streamed_ ? passed_ + problems + (failure ? 1 : 0) : to_write_;
  const std::size_t present = total_ - to_write_;
  const std::filesystem::path& folder = options_.output.folder;
  std::string summary = kit::concat(written_.load(), " of ", due, " frames written to ",
                                    is_standard(folder) ? "standard output" : folder.string());
  if (present > 0) summary += kit::concat("; ", present, " were there");
  say_effects(notes);
  if (stopped_ && !failure) throw Stopped(kit::printable("stopped; " + summary));
  if (!failure) {
    for (Run& run : runs_) {
      if (run.page) run.page->write(run.results);
      if (!run.sequence.name.empty()) out << kit::printable(run.sequence.name) << ":\n";
      print_results(run.results, &run.steadiness, out);
      if (!run.sequence.name.empty()) out << '\n';
    }
    if (runs_.size() > 1) {
      kit::ChainResults all = runs_.front().results;
      for (std::size_t i = 1; i < runs_.size(); ++i) all.add(runs_[i].results);
      out << "all:\n";
      print_results(all, nullptr, out);
    }
  }
  out << kit::printable(summary) << '\n';
  if (failure) std::rethrow_exception(failure);
  if (problems > 0) kit::fail(problems, problems == 1 ? " frame" : " frames", " failed");
}

}  // namespace

void run_command(const kit::FilterLibrary& library, RunOptions options, std::ostream& out,
                 std::ostream& notes) {
  if (options.output.folder.empty()) kit::refuse("the folder for the results has no name");
  const kit::Chain chain = open_chain(options);
  std::vector<Sequence> sequences = open_sequences(options, notes);
  if (is_standard(options.output.folder) && sequences.size() > 1)
    kit::refuse("standard output is one sequence; several folders are several, run them one by one");
  if (!options.report.file.empty() && sequences.size() > 1)
    kit::refuse("--report is about one sequence; several folders are several, run them one by one");
  if (!options.camera_input) note_nominal_camera(options, chain, notes);
  plan_sequences(sequences, options);
  Runs runs(library, chain, options, std::move(sequences));
  runs.work();
  runs.report(out, notes);
}

}  // namespace zvfilter
