#include "chain.h"

#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include "arrays.h"
#include "failure.h"
#include "input.h"
#include "kit/chain/chain_file.h"
#include "kit/common/files.h"

namespace py = pybind11;

namespace zvpython {

namespace {

struct Destroy {
  void operator()(zvf_chain* chain) const { zvf_chain_destroy(chain); }
  void operator()(zvf_frame* frame) const { zvf_frame_release(frame); }
};
using ChainHandle = std::unique_ptr<zvf_chain, Destroy>;
using FrameHandle = std::unique_ptr<zvf_frame, Destroy>;

/// What `call` gives, which is told where to say what is wrong.
template <typename Call>
auto checked(const Call& call) {
  Failure failure = {};
  auto result = call(&failure.error);
  if constexpr (std::is_same_v<decltype(result), zvf_code>) {
    if (result != ZVF_OK) throw failure;
  } else {
    if (!result) throw failure;
    return result;
  }
}

kit::Image copy_of(const zvf_view& view) {
  return {view.width, view.height, {view.pixels, view.pixels + std::size_t{view.width} * view.height}};
}

/// A chain that any thread may use: one at a time, and the interpreter goes on meanwhile.
class Chain {
  /// The lock is waited for without the interpreter, which its holder may need.
  template <typename Work>
  auto locked(const Work& work) {
    const py::gil_scoped_release others_run;
    const std::lock_guard lock(mutex_);
    return work();
  }

 public:
  explicit Chain(const std::string& text)
      : Chain(ChainHandle(
            checked([&](zvf_error* error) { return zvf_chain_parse(text.c_str(), error); }))) {}

  static std::unique_ptr<Chain> load(const std::string& file) {
    const py::gil_scoped_release others_run;
    return std::unique_ptr<Chain>(new Chain(
        ChainHandle(checked([&](zvf_error* error) { return zvf_chain_load(file.c_str(), error); }))));
  }

  std::unique_ptr<Chain> copy() {
    return locked([&] { return copy_now(); });
  }

  std::string json() {
    return locked([&] {
      kit::ChainFile file = kit::parse_chain(
          checked([&](zvf_error* error) { return zvf_chain_json(chain_.get(), error); }), "chain");
      file.input.reset();
      if (has_input_) file.input = kit_input(input_);
      return kit::chain_json(file);
    });
  }

  void append(const std::string& step, bool enabled) {
    locked([&] {
      const std::size_t at = zvf_chain_size(chain_.get());
      checked([&](zvf_error* e) { return zvf_chain_insert(chain_.get(), at, step.c_str(), e); });
      checked([&](zvf_error* e) { return zvf_chain_enable(chain_.get(), at, enabled, e); });
    });
  }

  std::size_t size() {
    return locked([&] { return zvf_chain_size(chain_.get()); });
  }

  int find(const std::string& name) {
    return locked([&] { return zvf_chain_find(chain_.get(), name.c_str()); });
  }

  std::tuple<std::string, std::string, bool, bool> step(std::size_t number) {
    return locked([&] {
      zvf_step step;
      checked([&](zvf_error* e) { return zvf_chain_step(chain_.get(), number, &step, e); });
      return std::tuple(std::string(step.filter), std::string(step.tag), step.enabled, step.as_made);
    });
  }

  void enable(std::size_t step, bool enabled) {
    locked(
        [&] { checked([&](zvf_error* e) { return zvf_chain_enable(chain_.get(), step, enabled, e); }); });
  }

  void set(std::size_t step, const std::string& values) {
    locked([&] {
      checked([&](zvf_error* e) { return zvf_chain_set(chain_.get(), step, values.c_str(), e); });
    });
  }

  double get(std::size_t step, const std::string& key) {
    return locked([&] {
      double value = 0;
      checked([&](zvf_error* e) { return zvf_chain_get(chain_.get(), step, key.c_str(), &value, e); });
      return value;
    });
  }

  void set_input(const py::dict& fields) {
    const zvf_input input = read_input(fields);
    locked([&] {
      input_ = input;
      has_input_ = true;
      width_ = height_ = 0;
    });
  }

  py::dict input() {
    return input_fields(locked([&] { return input_; }));
  }

  /// On a chain of its own: this one may be in the middle of a sequence of another size.
  std::tuple<std::uint32_t, std::uint32_t, py::dict> output(std::uint32_t width, std::uint32_t height) {
    const zvf_input made = locked([&] {
      const std::unique_ptr<Chain> trial = copy_now();
      trial->expect_size(width, height);
      zvf_input output;
      checked([&](zvf_error* e) { return zvf_chain_output(trial->chain_.get(), &output, e); });
      return output;
    });
    return {made.width, made.height, input_fields(made)};
  }

  struct Made {
    Pixels frame;
    std::vector<double> milliseconds;
    std::vector<std::optional<Pixels>> stages;
  };

  Made run(const Pixels& pixels, bool keep_stages) {
    const FrameRows rows = rows_of(pixels);
    FrameHandle frame;
    Made made;
    std::vector<kit::Image> stages;
    locked([&] {
      zvf_chain* const chain = chain_.get();
      expect_size(rows.width, rows.height);
      zvf_chain_keep_stages(chain, keep_stages);
      frame.reset(
          checked([&](zvf_error* e) { return zvf_chain_run_frame(chain, rows.pixels, rows.stride, e); }));
      for (std::size_t i = 0; i < zvf_chain_size(chain); ++i) {
        zvf_view stage;
        checked([&](zvf_error* e) { return zvf_chain_stage(chain, i, &stage, e); });
        made.milliseconds.push_back(stage.milliseconds);
        stages.push_back(stage.pixels != nullptr ? copy_of(stage) : kit::Image());
      }
      zvf_chain_keep_stages(chain, false);
    });
    made.frame = array_of(frame.release());
    for (kit::Image& stage : stages) {
      made.stages.emplace_back();
      if (!stage.pixels.empty()) made.stages.back() = array_of(std::move(stage));
    }
    return made;
  }

  void reset() {
    locked([&] { checked([&](zvf_error* e) { return zvf_chain_reset(chain_.get(), e); }); });
  }

 private:
  Chain(ChainHandle chain, const zvf_input& input, bool has_input)
      : chain_(std::move(chain)), input_(input), has_input_(has_input) {}

  explicit Chain(ChainHandle chain) : chain_(std::move(chain)) {
    has_input_ = zvf_chain_input(chain_.get(), &input_);
    input_.width = input_.height = 0;
  }

  std::unique_ptr<Chain> copy_now() const {
    ChainHandle copy(checked([&](zvf_error* error) { return zvf_chain_copy(chain_.get(), error); }));
    return std::unique_ptr<Chain>(new Chain(std::move(copy), input_, has_input_));
  }

  void expect_size(std::uint32_t width, std::uint32_t height) {
    if (width == width_ && height == height_) return;
    zvf_input input = input_;
    input.width = width;
    input.height = height;
    checked([&](zvf_error* error) { return zvf_chain_set_input(chain_.get(), &input, error); });
    width_ = width;
    height_ = height;
  }

  std::mutex mutex_;
  ChainHandle chain_;
  zvf_input input_ = zvf_input_of(0, 0);
  bool has_input_ = false;                // whether anybody has said it
  std::uint32_t width_ = 0, height_ = 0;  // of the input that the library has
};

}  // namespace

void bind_chain(py::module_& module) {
  py::class_<Chain>(module, "NativeChain")
      .def(py::init<const std::string&>(), py::arg("text"))
      .def_static("load", &Chain::load, py::arg("path"))
      .def("copy", &Chain::copy)
      .def("json", &Chain::json)
      .def("append", &Chain::append, py::arg("step"), py::arg("enabled"))
      .def("size", &Chain::size)
      .def("find", &Chain::find, py::arg("name"))
      .def("step", &Chain::step, py::arg("number"))
      .def("enable", &Chain::enable, py::arg("step"), py::arg("enabled"))
      .def("set", &Chain::set, py::arg("step"), py::arg("values"))
      .def("get", &Chain::get, py::arg("step"), py::arg("key"))
      .def("set_input", &Chain::set_input, py::arg("fields"))
      .def("input", &Chain::input)
      .def("output", &Chain::output, py::arg("width"), py::arg("height"))
      .def(
          "run",
          [](Chain& chain, const Pixels& pixels, bool keep_stages) {
            Chain::Made made = chain.run(pixels, keep_stages);
            return std::tuple(std::move(made.frame), std::move(made.milliseconds),
                              std::move(made.stages));
          },
          py::arg("pixels").noconvert(), py::arg("keep_stages"))
      .def("reset", &Chain::reset);
}

}  // namespace zvpython
