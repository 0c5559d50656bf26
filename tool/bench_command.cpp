#include <iomanip>
#include <mutex>
#include <ostream>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/pipeline/sequence.h"
#include "kit/pipeline/workers.h"
#include "run_setup.h"

namespace zvfilter {

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Seconds that threads spent with each part of the work, and that passed for all of it.
struct Costs {
  double decode = 0, encode = 0, whole = 0;
  std::vector<double> steps;
};

/// The whole work but for the storage: results are encoded and let go.
Costs measure(const kit::FilterLibrary& library, const kit::Chain& chain, const RunOptions& options,
              const Sequence& sequence, const kit::Workers& workers) {
  Costs costs;
  costs.steps.resize(chain.size());
  std::mutex mutex;
  kit::FrameSource source = sequence.source;
  source.load = [&](std::size_t index) {
    const auto start = Clock::now();
    kit::SourceFrame frame = sequence.source.load(index);
    const double taken = seconds_since(start);
    const std::lock_guard lock(mutex);
    costs.decode += taken;
    return frame;
  };
  kit::SequenceVisitor visitor;
  visitor.on_passage = [&](const kit::SourceFrame&, const kit::Passage& passage) {
    if (passage.number > 0) costs.steps[passage.number - 1] += passage.milliseconds / 1000;
  };
  visitor.on_result = [&](std::size_t index, const kit::SourceFrame&, const kit::FrameView& result) {
    const auto start = Clock::now();
    static_cast<void>(encode_result(result_codec(sequence.source.names[index], options.output),
                                    options.output, result));
    const double taken = seconds_since(start);
    const std::lock_guard lock(mutex);
    costs.encode += taken;
  };
  kit::Pipeline pipeline(library, chain);
  const auto start = Clock::now();
  const std::size_t in_flight = workers.threads() == 1 ? 1 : 2 + 2 * workers.threads();
  workers.for_each(1, [&](std::size_t) {
    kit::run_sequence(source, pipeline, {options.handover, in_flight, {}}, visitor);
  });
  costs.whole = seconds_since(start);
  return costs;
}

void print_row(std::ostream& out, const std::string& part, std::size_t frames, double one, double all) {
  const auto rate = [&](double seconds) {
    return seconds > 0
               ? kit::concat(std::fixed, std::setprecision(1), static_cast<double>(frames) / seconds)
               : std::string("-");
  };
  out << std::left << std::setw(30) << part << std::right << std::setw(12) << rate(one) << std::setw(12)
      << rate(all) << '\n';
}

}  // namespace

void bench_command(const kit::FilterLibrary& library, RunOptions options, std::ostream& out) {
  const kit::Chain chain = open_chain(options);
  std::vector<Sequence> sequences = open_sequences(options, out);
  if (sequences.front().source.next) kit::refuse("standard input cannot be measured; expected files");
  if (sequences.size() > 1) kit::refuse("several folders; expected one to measure");
  const Sequence& sequence = sequences.front();
  const kit::Workers one(1), all(options.jobs);
  const Costs alone = measure(library, chain, options, sequence, one);
  const Costs shared = measure(library, chain, options, sequence, all);

  const std::size_t frames = sequence.source.names.size();
  out << frames << (frames == 1 ? " frame" : " frames") << "; frames a second:\n"
      << std::left << std::setw(30) << "" << std::right << std::setw(12) << "1 thread" << std::setw(12)
      << kit::concat(all.threads(), all.threads() == 1 ? " thread" : " threads") << '\n';
  const auto threads = static_cast<double>(all.threads());
  print_row(out, "decode", frames, alone.decode, shared.decode / threads);
  for (std::size_t i = 0; i < chain.size(); ++i) {
    // A filter sees one frame after the other, whatever the number of threads.
    print_row(out, kit::step_name(chain, i), frames, alone.steps[i], shared.steps[i]);
  }
  print_row(out, "encode", frames, alone.encode, shared.encode / threads);
  print_row(out, "whole", frames, alone.whole, shared.whole);
}

}  // namespace zvfilter
