#include "kit/pipeline/sequence.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <utility>

#include <tbb/parallel_pipeline.h>

#include "kit/common/error.h"

namespace kit {

namespace {

FrameView view_of(const zv_frame_t* handle) {
  const hosts::FrameTraits& traits = framehost::traits_of(handle);
  const hosts::ProfileTraits* const profile = framehost::profile_of(handle);
  return {traits,
          profile != nullptr ? profile->disparity : traits.disparity,
          {framehost::pixels_of(handle), framehost::pixel_count(handle)}};
}

Input input_of(Frame& frame) {
  std::vector<std::uint16_t> pixels = std::exchange(frame.pixels, {});  // not to be copied
  Input input{frame, true, true};
  frame.pixels = std::move(pixels);
  return input;
}

/// A frame under way.
struct Transit {
  std::size_t index;
  std::optional<SourceFrame> input;
  std::vector<Stage> stages;  // of the steps that are on, and the number of each
  std::vector<std::size_t> numbers;
  framehost::Frame result;
  std::exception_ptr problem;
  bool dropped = false;  // after the frame whose failure ended the sequence

  bool goes_on() const { return !problem && !dropped; }
};

/// The stations of every frame. Each works for many frames at once or, where it says so, for one after the other in order.
class SequenceRun {
 public:
  SequenceRun(const FrameSource& source, Pipeline& pipeline, const SequenceOptions& options,
              const SequenceVisitor& visitor)
      : source_(source), pipeline_(pipeline), options_(options), visitor_(visitor) {
    pipeline_.keep_stages(static_cast<bool>(visitor_.on_passage));
  }

  /// In order. @return null: there is no further frame
  std::shared_ptr<Transit> start() {
    if (ended_ || (options_.stop && options_.stop())) return nullptr;
    if (!source_.next && next_ == source_.names.size()) return nullptr;
    auto transit = std::make_shared<Transit>();
    transit->index = next_++;
    if (!source_.next) return transit;
    attempt(*transit, [&] { transit->input = source_.next(); });
    return transit->problem || transit->input ? transit : nullptr;
  }

  void load(Transit& transit) {
    if (!transit.input) attempt(transit, [&] { transit.input = source_.load(transit.index); });
  }

  /// In order.
  void filter(Transit& transit) {
    transit.dropped = ended_;
    attempt(transit, [&] { pass_chain(transit); });
    if (transit.problem && !visitor_.on_problem) ended_ = true;
  }

  /// In order.
  void measure(Transit& transit) {
    attempt(transit, [&] {
      if (visitor_.on_passage) show_passages(transit);
      if (visitor_.on_filtered)
        visitor_.on_filtered(transit.index, *transit.input, view_of(transit.result.get()));
    });
    transit.stages.clear();
  }

  void deliver(Transit& transit) {
    if (!visitor_.on_result) return;
    attempt(transit,
            [&] { visitor_.on_result(transit.index, *transit.input, view_of(transit.result.get())); });
  }

  /// In order.
  void finish(const Transit& transit) {
    if (problem_) return;
    if (transit.problem) {
      take(transit.problem);
    } else if (!transit.dropped && visitor_.on_done) {
      visitor_.on_done(transit.index);
    }
  }

  void report() const {
    if (problem_) std::rethrow_exception(problem_);
  }

 private:
  template <typename Work>
  void attempt(Transit& transit, const Work& work) {
    if (!transit.goes_on()) return;
    try {
      work();
    } catch (...) {
      transit.problem = std::current_exception();
    }
  }

  void pass_chain(Transit& transit) {
    Frame& frame = transit.input->frame;
    try {
      pipeline_.set_input(input_of(frame));
      transit.result = pipeline_.run({frame.pixels.data(), frame.width * sizeof(std::uint16_t)}, nullptr,
                                     options_.handover);
    } catch (const Error& problem) {
      throw Error(problem.kind(), concat(source_.label(transit.index), ": ", problem.what()),
                  problem.place());
    }
    for (std::size_t step = 0; step < pipeline_.chain().size(); ++step) {
      const Stage& stage = pipeline_.stage(step);
      if (!stage.frame) continue;
      transit.stages.push_back({framehost::depth_frame_of(stage.frame.get()), stage.milliseconds});
      transit.numbers.push_back(step + 1);
    }
  }

  void show_passages(const Transit& transit) {
    const SourceFrame& input = *transit.input;
    FrameView current = input.frame;
    visitor_.on_passage(input, {0, current, current, 0});
    for (std::size_t i = 0; i < transit.stages.size(); ++i) {
      const FrameView next = view_of(transit.stages[i].frame.get());
      visitor_.on_passage(input, {transit.numbers[i], current, next, transit.stages[i].milliseconds});
      current = next;
    }
  }

  void take(const std::exception_ptr& problem) {
    try {
      std::rethrow_exception(problem);
    } catch (const Error& error) {
      if (visitor_.on_problem) return visitor_.on_problem(error);
      problem_ = problem;
    } catch (...) {
      problem_ = problem;
    }
    ended_ = true;
  }

  const FrameSource& source_;
  Pipeline& pipeline_;
  const SequenceOptions& options_;
  const SequenceVisitor& visitor_;
  std::size_t next_ = 0;
  std::atomic<bool> ended_ = false;
  std::exception_ptr problem_;  // the first one
};

using TransitPointer = std::shared_ptr<Transit>;

}  // namespace

void run_sequence(const FrameSource& source, Pipeline& pipeline, const SequenceOptions& options,
                  const SequenceVisitor& visitor) {
  SequenceRun run(source, pipeline, options, visitor);
  if (options.frames_in_flight <= 1) {
    while (const TransitPointer transit = run.start()) {
      run.load(*transit);
      run.filter(*transit);
      run.measure(*transit);
      run.deliver(*transit);
      run.finish(*transit);
    }
    return run.report();
  }
  using tbb::filter_mode;
  const auto station = [&](filter_mode mode, void (SequenceRun::*work)(Transit&)) {
    return tbb::make_filter<TransitPointer, TransitPointer>(mode, [&run, work](TransitPointer transit) {
      (run.*work)(*transit);
      return transit;
    });
  };
  const auto start = [&](tbb::flow_control& control) {
    TransitPointer transit = run.start();
    if (!transit) control.stop();
    return transit;
  };
  tbb::parallel_pipeline(
      options.frames_in_flight,
      tbb::make_filter<void, TransitPointer>(filter_mode::serial_in_order, start) &
          station(filter_mode::parallel, &SequenceRun::load) &
          station(filter_mode::serial_in_order, &SequenceRun::filter) &
          station(filter_mode::serial_in_order, &SequenceRun::measure) &
          station(options.results_in_order ? filter_mode::serial_in_order : filter_mode::parallel,
                  &SequenceRun::deliver) &
          tbb::make_filter<TransitPointer, void>(
              filter_mode::serial_in_order,
              [&](const TransitPointer& transit) { run.finish(*transit); }));
  run.report();
}

ChainResults::ChainResults(const Chain& chain) : filters(chain.size()) {
  for (std::size_t i = 0; i < chain.size(); ++i) filters[i].name = chain[i].filter;
}

AccuracySummary ChainResults::add(const Passage& passage, const std::optional<Image>& truth) {
  if (passage.number > 0)
    filters[passage.number - 1].add(passage.before, passage.frame, passage.milliseconds);
  if (!truth) return {};
  accuracy.resize(filters.size() + 1);
  return accuracy[passage.number].add(passage.frame, *truth);
}

void ChainResults::add(const ChainResults& other) {
  for (std::size_t i = 0; i < filters.size(); ++i) filters[i].add(other.filters[i]);
  accuracy.resize(std::max(accuracy.size(), other.accuracy.size()));
  for (std::size_t i = 0; i < other.accuracy.size(); ++i) accuracy[i].add(other.accuracy[i]);
}

}  // namespace kit
