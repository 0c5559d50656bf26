#include "advise.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <pybind11/stl.h>

#include "arrays.h"
#include "input.h"
#include "kit/advise/advice.h"
#include "kit/chain/chain_file.h"
#include "kit/common/error.h"
#include "library/chain.h"

namespace py = pybind11;

namespace zvpython {

namespace {

std::vector<std::uint16_t> pixels_of(const Pixels& array) {
  const FrameRows rows = rows_of(array);
  std::vector<std::uint16_t> pixels;
  pixels.reserve(std::size_t{rows.width} * rows.height);
  for (std::size_t y = 0; y < rows.height; ++y) {
    const auto* const row = reinterpret_cast<const std::uint16_t*>(
        reinterpret_cast<const unsigned char*>(rows.pixels) + y * rows.stride);
    pixels.insert(pixels.end(), row, row + rows.width);
  }
  return pixels;
}

kit::Footage footage_of(const std::vector<Pixels>& frames, const std::vector<Pixels>& truth,
                        const py::dict& fields) {
  const kit::Input input = kit_input(read_input(fields));
  kit::Footage footage;
  footage.has_geometry = input.has_geometry;
  for (const Pixels& array : frames) {
    kit::Frame frame = input.traits;
    const FrameRows rows = rows_of(array);
    frame.width = rows.width;
    frame.height = rows.height;
    frame.pixels = pixels_of(array);
    footage.frames.push_back(std::move(frame));
  }
  for (const Pixels& array : truth) {
    const FrameRows rows = rows_of(array);
    footage.truth.push_back({rows.width, rows.height, pixels_of(array)});
  }
  return footage;
}

void share_work(std::size_t threads, std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next = 0;
  const auto take = [&] {
    for (std::size_t number = next++; number < count; number = next++) work(number);
  };
  std::vector<std::future<void>> others;
  for (std::size_t i = 1; i < std::min(threads, count); ++i)
    others.push_back(std::async(std::launch::async, take));
  take();
  for (std::future<void>& other : others) other.get();
}

/// Tells Python how far the search is. @return whether it is to end
bool tell(const py::object& progress, const kit::AdviceProgress& now) {
  const py::gil_scoped_acquire python;
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  if (progress.is_none()) return false;
  const py::object answer = progress(now.evaluations, now.limit, now.loss, kit::chain_text(now.best));
  return answer.is(py::bool_(false));
}

py::dict row_of(const kit::AdviceRow& row) {
  py::dict values;
  for (const kit::MeasureText& text : kit::measure_texts()) {
    if (row.measures[text.measure]) values[py::str(std::string(text.name))] = *row.measures[text.measure];
  }
  values["loss"] = row.loss;
  return values;
}

py::dict advise(const std::vector<Pixels>& frames, const std::vector<Pixels>& truth,
                const py::dict& input, const std::string& chain, const std::string& step,
                const std::vector<std::string>& weights, std::uint64_t seed,
                std::optional<std::size_t> evaluations, double seconds, std::size_t threads,
                const py::object& progress) {
  kit::AdviceRequest request{.footage = footage_of(frames, truth, input)};
  request.chain = kit::parse_chain(chain, "chain").steps;
  if (!step.empty()) {
    request.step = kit::find_step(request.chain, step);
    if (!request.step) kit::refuse("step ", step, ": the chain has no such step, or more than one");
  }
  request.weights = kit::default_weights(!truth.empty());
  for (const std::string& weight : weights) kit::set_weight(*request.weights, weight);
  request.seed = seed;
  request.evaluations = evaluations;
  request.seconds = seconds;
  const std::size_t shared = threads != 0 ? threads : std::max(std::thread::hardware_concurrency(), 1u);
  request.for_each = [shared](std::size_t count, const std::function<void(std::size_t)>& work) {
    share_work(shared, count, work);
  };
  bool ended = false;
  request.stop = [&ended] { return ended; };
  request.progress = [&](const kit::AdviceProgress& now) { ended = tell(progress, now); };

  kit::Advice advice;
  {
    const py::gil_scoped_release others_run;
    advice = kit::advise(zvfilter::filters(), request);
  }
  py::dict rows;
  for (const kit::AdviceRow& row : advice.rows) rows[py::str(row.name)] = row_of(row);
  py::dict result;
  result["chain"] = kit::chain_json({"", {}, advice.chain});
  result["helps"] = advice.helps;
  result["held_out"] = advice.held_out;
  result["rows"] = rows;
  result["reasons"] = advice.reasons;
  result["remarks"] = advice.remarks;
  result["evaluations"] = advice.evaluations;
  return result;
}

}  // namespace

void bind_advise(py::module_& module) {
  module.def("advise", &advise, py::arg("frames"), py::arg("truth"), py::arg("input"), py::arg("chain"),
             py::arg("step"), py::arg("weights"), py::arg("seed"), py::arg("evaluations"),
             py::arg("seconds"), py::arg("threads"), py::arg("progress"));
}

}  // namespace zvpython
