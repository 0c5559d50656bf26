#include "chain.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "errors.h"
#include "kit/common/files.h"
#include "kit/filter/filter_behaviour.h"

using zvfilter::Codes;
using zvfilter::guarded;
using zvfilter::report;

zvf_chain::zvf_chain(kit::ChainFile file)
    : description(std::move(file.description)),
      input(std::move(file.input)),
      pipeline(zvfilter::filters(), file.steps) {
  if (!input || !input->has_size()) return;
  pipeline.set_input(*input);
  has_input = true;
}

kit::ChainFile zvf_chain::file() const { return {description, input, pipeline.chain()}; }

std::size_t zvf_chain::step(std::size_t number) const {
  if (number < pipeline.chain().size()) return number;
  throw kit::Error(kit::Error::Kind::bad_request,
                   kit::concat("there is no step ", number, "; the chain has ", pipeline.chain().size(),
                               ", the first is 0"));
}

namespace {

constexpr Codes kArgument = {ZVF_BAD_ARGUMENT, ZVF_FAILED};
constexpr Codes kChain = {ZVF_BAD_CHAIN, ZVF_BAD_CHAIN};
constexpr Codes kFile = {ZVF_BAD_CHAIN, ZVF_NO_FILE};
constexpr Codes kInput = {ZVF_BAD_INPUT, ZVF_BAD_INPUT};
constexpr Codes kRun = {ZVF_BAD_INPUT, ZVF_FAILED};

/// A chain that a function makes.
template <typename Make>
zvf_chain* made(zvf_error* error, const Codes& codes, const Make& make) noexcept {
  zvf_chain* chain = nullptr;
  guarded(error, codes, [&] { chain = new zvf_chain(make()); });
  return chain;
}

bool need_input(const zvf_chain& chain, zvf_error* error) {
  if (chain.has_input) return true;
  report(error, ZVF_BAD_INPUT,
         "the chain does not know the size of its input; give it with zvf_chain_set_input()");
  return false;
}

/// The step's place in the arguments is checked before the work is done.
template <typename Work>
zvf_code at_step(const zvf_chain& chain, std::size_t step, zvf_error* error, const Codes& codes,
                 const Work& work) {
  const zvf_code code = guarded(error, kArgument, [&] { chain.step(step); });
  return code == ZVF_OK ? guarded(error, codes, work) : code;
}

std::size_t row_bytes(std::uint32_t width) { return width * sizeof(std::uint16_t); }

bool overlap(const void* a, std::size_t a_size, const void* b, std::size_t b_size) {
  const auto first = reinterpret_cast<std::uintptr_t>(a), second = reinterpret_cast<std::uintptr_t>(b);
  return first < second + b_size && second < first + a_size;
}

/// The rows that the caller gave.
kit::Rows rows_of(const zvf_chain& chain, const std::uint16_t* pixels, std::size_t stride) {
  const std::size_t least = row_bytes(chain.pipeline.input().traits.width);
  if (pixels == nullptr) kit::refuse_key("pixels", "the pixels are a null pointer");
  if (stride != 0 && stride < least) {
    kit::refuse_key("stride", "the stride is ", stride, " bytes; a row has ", least);
  }
  return {pixels, stride != 0 ? stride : least};
}

void copy_rows(const void* from, std::size_t from_stride, void* to, std::size_t to_stride,
               std::size_t bytes, std::size_t rows) {
  for (std::size_t y = 0; y < rows; ++y) {
    std::memmove(static_cast<char*>(to) + y * to_stride, static_cast<const char*>(from) + y * from_stride,
                 bytes);
  }
}

bool one_step_at_most(const zvf_chain& chain) {
  int on = 0;
  for (const kit::Step& step : chain.pipeline.chain()) on += step.enabled ? 1 : 0;
  return on <= 1;
}

void run_into(zvf_chain& chain, const kit::Rows& rows, std::uint16_t* output, std::size_t output_stride) {
  if (output == nullptr) kit::refuse_key("output", "the output is a null pointer");
  const hosts::FrameTraits& traits = chain.pipeline.output().traits;
  const std::size_t bytes = row_bytes(traits.width);
  const std::size_t stride = output_stride != 0 ? output_stride : bytes;
  if (stride < bytes) {
    kit::refuse_key("output_stride", "the output's stride is ", stride, " bytes; a row has ", bytes);
  }
  const bool in_place = overlap(rows.pixels, rows.stride * chain.pipeline.input().traits.height, output,
                                stride * traits.height);
  // A filter may write a pixel before it has read another of the same memory, but not over another step's frame.
  const bool direct = stride == bytes && !chain.keeps_stages && !(in_place && one_step_at_most(chain)) &&
                      reinterpret_cast<std::uintptr_t>(output) % alignof(std::uint16_t) == 0;
  const framehost::Frame frame = chain.pipeline.run(rows, direct ? output : nullptr);
  const std::uint16_t* const made = framehost::pixels_of(frame.get());
  const bool untouched = made == rows.pixels;  // no step is on
  if (made != output || untouched)
    copy_rows(made, untouched ? rows.stride : bytes, output, stride, bytes, traits.height);
}

framehost::Frame run_pooled(zvf_chain& chain, const kit::Rows& rows) {
  framehost::Frame frame = chain.pipeline.run(rows);
  if (framehost::pixels_of(frame.get()) != rows.pixels) return frame;
  const hosts::FrameTraits& traits = framehost::traits_of(frame.get());
  framehost::Frame copy = framehost::make_frame(chain.pipeline.pool(), traits, nullptr);
  std::memcpy(framehost::pixels_of(copy.get()), rows.pixels, row_bytes(traits.width) * traits.height);
  return copy;
}

}  // namespace

extern "C" {

zvf_chain* zvf_chain_create(zvf_error* error) {
  return made(error, kChain, [] { return kit::ChainFile(); });
}

zvf_chain* zvf_chain_parse(const char* text, zvf_error* error) {
  return made(error, kChain, [&] { return kit::parse_chain(text, "chain"); });
}

zvf_chain* zvf_chain_load(const char* file, zvf_error* error) {
  return made(error, kFile, [&] { return kit::read_chain_file(file); });
}

zvf_chain* zvf_chain_read(const char* source, zvf_error* error) {
  return made(error, kFile, [&] { return kit::read_chain(source); });
}

zvf_chain* zvf_chain_copy(const zvf_chain* chain, zvf_error* error) {
  return made(error, kChain, [&] { return chain->file(); });
}

void zvf_chain_destroy(zvf_chain* chain) { delete chain; }

const char* zvf_chain_json(zvf_chain* chain, zvf_error* error) {
  const zvf_code code = guarded(error, kChain, [&] { chain->json = kit::chain_json(chain->file()); });
  return code == ZVF_OK ? chain->json.c_str() : nullptr;
}

zvf_code zvf_chain_save(zvf_chain* chain, const char* file, zvf_error* error) {
  return guarded(error, kFile, [&] {
    const std::string json = kit::chain_json(chain->file());
    kit::write_whole(file, kit::Bytes(json.begin(), json.end()), kit::Durability::synced);
  });
}

size_t zvf_chain_size(const zvf_chain* chain) { return chain->pipeline.chain().size(); }

zvf_code zvf_chain_step(const zvf_chain* chain, size_t step, zvf_step* out, zvf_error* error) {
  return guarded(error, kArgument, [&] {
    const kit::Step& each = chain->pipeline.chain()[chain->step(step)];
    *out = {each.filter.c_str(), each.tag.c_str(), each.enabled, !each.values};
  });
}

int32_t zvf_chain_find(const zvf_chain* chain, const char* name) {
  const auto step = kit::find_step(chain->pipeline.chain(), name);
  return step ? static_cast<int32_t>(*step) : -1;
}

zvf_code zvf_chain_insert(zvf_chain* chain, size_t at, const char* text, zvf_error* error) {
  if (at > chain->pipeline.chain().size())
    return report(error, ZVF_BAD_ARGUMENT, "a step can be put before another or last");
  return guarded(error, kChain, [&] { chain->pipeline.insert(at, kit::parse_step(text)); });
}

zvf_code zvf_chain_remove(zvf_chain* chain, size_t step, zvf_error* error) {
  return guarded(error, kArgument, [&] { chain->pipeline.remove(chain->step(step)); });
}

zvf_code zvf_chain_move(zvf_chain* chain, size_t step, size_t to, zvf_error* error) {
  return guarded(error, kArgument, [&] { chain->pipeline.move(chain->step(step), chain->step(to)); });
}

zvf_code zvf_chain_enable(zvf_chain* chain, size_t step, bool enabled, zvf_error* error) {
  return guarded(error, kArgument, [&] { chain->pipeline.enable(chain->step(step), enabled); });
}

zvf_code zvf_chain_set(zvf_chain* chain, size_t step, const char* values, zvf_error* error) {
  return at_step(*chain, step, error, kChain, [&] {
    kit::Values all = chain->pipeline.chain()[step].values.value_or(kit::Values());
    for (auto& [key, value] : kit::parse_values(values)) all[key] = value;
    chain->pipeline.configure(step, all);
  });
}

zvf_code zvf_chain_get(const zvf_chain* chain, size_t step, const char* key, double* value,
                       zvf_error* error) {
  return at_step(*chain, step, error, kChain,
                 [&] { *value = kit::value_of(chain->pipeline, step, key); });
}

zvf_code zvf_chain_set_input(zvf_chain* chain, const zvf_input* input, zvf_error* error) {
  return guarded(error, kInput, [&] {
    kit::Input read = zvfilter::read_input(*input);
    chain->pipeline.set_input(read);
    chain->input = std::move(read);
    chain->has_input = true;
  });
}

bool zvf_chain_input(const zvf_chain* chain, zvf_input* input) {
  if (chain->input) *input = zvfilter::input_record(*chain->input);
  return chain->input.has_value();
}

zvf_code zvf_chain_output(zvf_chain* chain, zvf_input* output, zvf_error* error) {
  if (!need_input(*chain, error)) return ZVF_BAD_INPUT;
  return guarded(error, kInput, [&] { *output = zvfilter::input_record(chain->pipeline.output()); });
}

zvf_code zvf_chain_run(zvf_chain* chain, const uint16_t* pixels, size_t stride, uint16_t* output,
                       size_t output_stride, zvf_error* error) {
  if (!need_input(*chain, error)) return ZVF_BAD_INPUT;
  return guarded(error, kRun,
                 [&] { run_into(*chain, rows_of(*chain, pixels, stride), output, output_stride); });
}

zvf_frame* zvf_chain_run_frame(zvf_chain* chain, const uint16_t* pixels, size_t stride,
                               zvf_error* error) {
  framehost::Frame frame;
  if (!need_input(*chain, error)) return nullptr;
  guarded(error, kRun, [&] { frame = run_pooled(*chain, rows_of(*chain, pixels, stride)); });
  return reinterpret_cast<zvf_frame*>(frame.release());
}

zvf_view zvf_frame_view(const zvf_frame* frame) {
  return zvfilter::view_of(reinterpret_cast<const zv_frame_t*>(frame), 0);
}

void zvf_frame_release(zvf_frame* frame) {
  framehost::Frame(reinterpret_cast<zv_frame_t*>(frame)).reset();
}

void zvf_chain_keep_stages(zvf_chain* chain, bool keep) {
  chain->keeps_stages = keep;
  chain->pipeline.keep_stages(keep);
}

zvf_code zvf_chain_stage(const zvf_chain* chain, size_t step, zvf_view* out, zvf_error* error) {
  return guarded(error, kArgument, [&] {
    const kit::Stage& stage = chain->pipeline.stage(chain->step(step));
    *out = zvfilter::view_of(stage.frame.get(), stage.milliseconds);
    out->milliseconds = stage.milliseconds;
  });
}

zvf_code zvf_chain_reset(zvf_chain* chain, zvf_error* error) {
  return guarded(error, kChain, [&] { chain->pipeline.reset(); });
}

}  // extern "C"
