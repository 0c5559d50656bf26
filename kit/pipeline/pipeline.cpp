#include "kit/pipeline/pipeline.h"

#include <chrono>
#include <utility>

#include "kit/common/error.h"
#include "kit/plugin/filter_behaviour.h"

namespace kit {

namespace {

/// What the filter is to be configured with.
std::vector<std::string> checked(const Filter& filter, const Values& values,
                                 const Pipeline::OnWarning& on_warning) {
  const auto warn = [&](const std::string& line) {
    if (on_warning) on_warning(line);
  };
  std::vector<std::string> texts;
  if (ignores_configuration(filter.name())) {
    warn(filter.name() + ": the filter has no parameters and will ignore any");
    for (const auto& [key, value] : values) texts.push_back(value);
    return texts;
  }
  const std::vector<SchemaParameter> schema = filter.parameters();
  texts = configuration_values(filter.name(), values, schema);
  for (const std::string& line : configuration_warnings(filter.name(), schema, texts)) warn(line);
  return texts;
}

Frame read_frame(const zv_frame_t* handle, const std::string& filter) {
  Frame frame = devhost::inspect(devhost::depth_frame_of(handle).get());
  if (frame.pixels.empty() || frame.pixels.size() != std::size_t{frame.width} * frame.height) {
    fail(filter, " gave a frame of ", frame.width, "x", frame.height, " with ", frame.pixels.size(),
         " pixels");
  }
  return frame;
}

}  // namespace

Pipeline::Pipeline(const Plugin& plugin, Chain chain, const OnWarning& on_warning)
    : chain_(std::move(chain)) {
  std::vector<std::vector<std::string>> configurations(chain_.size());
  for (std::size_t i = 0; i < chain_.size(); ++i) {
    filters_.push_back(plugin.create(chain_[i].filter));
    if (chain_[i].values) configurations[i] = checked(filters_[i], *chain_[i].values, on_warning);
  }
  for (std::size_t i = 0; i < chain_.size(); ++i) {
    if (chain_[i].values) filters_[i].configure(configurations[i]);
  }
}

void Pipeline::configure(std::size_t step, Values values, const OnWarning& on_warning) {
  filters_[step].configure(checked(filters_[step], values, on_warning));
  chain_[step].values = std::move(values);
}

void Pipeline::reset() {
  for (Filter& filter : filters_) filter.reset();
}

Frame Pipeline::run(const Frame& frame, const OnStage& on_stage, Handover handover) {
  devhost::Frame handle = devhost::make_frame(frame);
  if (handover == Handover::frame_set) handle = devhost::make_frame_set(std::move(handle));
  if (on_stage) on_stage({0, frame, frame, 0});
  Frame current = frame;
  for (std::size_t i = 0; i < filters_.size(); ++i) {
    if (!chain_[i].enabled) continue;
    const auto start = std::chrono::steady_clock::now();
    handle = filters_[i].process(handle.get());
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    Frame next = read_frame(handle.get(), filters_[i].name());
    if (on_stage) on_stage({i + 1, current, next, taken.count()});
    current = std::move(next);
  }
  return current;
}

}  // namespace kit
