// A host's doings with the plug-in: filters are made, configured, given frames, reset and destroyed in
// any order, while host calls fail.
#include <algorithm>
#include <array>
#include <cstdlib>

#include "filter_handle.h"
#include "frames.h"
#include "kit/schema/schema.h"
#include "target.h"

namespace filterprocessor::fuzz {

namespace {

using devhost::FilterHandle;

std::string in_range(Source& input, const kit::SchemaParameter& parameter) {
  const double min = std::atof(parameter.min.c_str());
  const double max = std::atof(parameter.max.c_str());
  switch (input.integer(0, 7)) {
    case 0:
      return parameter.default_value;
    case 1:
      return parameter.min;
    case 2:
      return parameter.max;
    case 3:
      return std::to_string(min + (max - min) * input.integer(0, 4096) / 4096);
    default:  // small numbers are what small frames need
      return std::to_string(
          std::min(max, min + (parameter.type == "float" ? 0.05 : 1) * input.integer(0, 60)));
  }
}

std::string anything(Source& input, const kit::SchemaParameter& parameter) {
  switch (input.integer(0, 3)) {
    case 0:
      return std::to_string(std::atof(parameter.min.c_str()) - 1);
    case 1:
      return std::to_string(std::atof(parameter.max.c_str()) + 1);
    case 2:
      return input.pick({"nan", "inf", "-inf", "", "x", "-1", "0", "1e400", "1e-400",
                         "99999999999999999999", "-99999999999999999999", "2147483648", " 1", "0x10",
                         "1,5", "0.1", "50"});
    default: {
      const auto bytes = input.take(input.size(0, 12));
      return std::string(bytes.begin(), bytes.end());
    }
  }
}

/// Texts for a filter's parameters: mostly all of them in range, otherwise some that are not, and now and
/// then some too many or too few.
std::vector<std::string> any_arguments(Source& input,
                                       const std::vector<kit::SchemaParameter>& parameters) {
  std::vector<std::string> texts;
  const bool usual = !input.one_in(4);
  for (const kit::SchemaParameter& parameter : parameters) {
    texts.push_back(usual || input.flag() ? in_range(input, parameter) : anything(input, parameter));
  }
  if (input.one_in(16)) texts.resize(input.size(0, 12), "1");
  return texts;
}

/// Makes the n-th host call fail, whichever it is, while `action` runs; none for 0.
void with_fault(int occurrence, const auto& action) {
  if (occurrence > 0) devhost::fail_call("", occurrence);
  action();
  if (occurrence > 0) devhost::clear_fault();
}

long frames_in(const devhost::Frame& frame) {
  if (!frame) return 0;
  return devhost::depth_frame_of(frame.get()).get() == frame.get() ? 1 : 2;
}

class Host {
 public:
  explicit Host(Source& input) : input_(input) {}

  void act() {
    FilterHandle& filter = filters_[input_.number<std::uint8_t>() % filters_.size()];
    devhost::Frame& frame = frames_[input_.number<std::uint8_t>() % frames_.size()];
    if (!frame) frame = any_frame(input_);
    if (!filter) {
      filter = any_filter();
      if (input_.flag()) update(filter);
    }
    const int action = input_.integer(0, 15);
    fault_ = input_.one_in(4) ? input_.integer(1, 40) : 0;
    if (action < 9) {
      process(filter, frame);
    } else if (action < 12) {
      update(filter);
    } else if (action < 14) {
      frame = nullptr;
    } else if (action == 14) {
      with_fault(fault_, [&] { zv_priv_filter_reset(handle(filter), slot()); });
    } else {
      with_fault(fault_, [&] { filter.reset(); });
    }
  }

 private:
  static zv_priv_filter_t* handle(const FilterHandle& filter) {
    return filter ? filter->filter : nullptr;
  }

  FilterHandle any_filter() {
    const int index =
        input_.one_in(16) ? input_.number<std::int32_t>() : input_.integer(0, zv_get_filter_count() - 1);
    const std::string name = zv_get_filter_name(index);
    FilterHandle filter(zv_create_filter(index));
    require(!filter || name != "UnknownFilter", "only known filters are made");
    return filter;
  }

  /// A place for an error, with one in it already now and then; or none.
  zv_error** slot() {
    error_ = input_.one_in(16) ? zv_create_error(1, "old", "before", "", 0) : nullptr;
    return input_.one_in(8) ? nullptr : &error_;
  }

  void update(const FilterHandle& filter) {
    const char* schema = zv_priv_filter_get_config_schema(handle(filter), slot());
    require((schema != nullptr) == (filter != nullptr), "a filter has a schema");
    if (schema == nullptr) return;
    const auto texts = any_arguments(input_, kit::parse_schema(schema));
    std::vector<const char*> argv;
    for (const std::string& text : texts) argv.push_back(input_.one_in(64) ? nullptr : text.c_str());
    filter->update_config(filter->filter, argv.size(), input_.one_in(64) ? nullptr : argv.data(), slot());
  }

  void process(const FilterHandle& filter, devhost::Frame& held) {
    const zv_frame_t* frame = input_.one_in(32) ? nullptr : held.get();
    const std::string before = content_of(held.get());
    const long frames = devhost::live_objects().frames;
    zv_error** const error = slot();
    zv_error* const old = error_;

    devhost::hide_data(input_.one_in(64));
    devhost::Frame result;
    with_fault(fault_, [&] { result.reset(zv_priv_filter_process(handle(filter), frame, error)); });
    devhost::hide_data(false);

    require(content_of(held.get()) == before, "the input stays as it is");
    require(devhost::live_objects().frames == frames + frames_in(result), "no frame is left behind");
    if (!filter || frame == nullptr) {
      require(!result && error_ == old, "nothing comes from nothing");
    } else if (error != nullptr) {
      require((result == nullptr) == (error_ != nullptr), "there is a result or an error");
      require(old == nullptr || !result, "an error that is there already counts");
    }
    if (result && input_.one_in(4)) held = std::move(result);
  }

  Source& input_;
  std::array<FilterHandle, 2> filters_;
  std::array<devhost::Frame, 2> frames_;
  zv_error* error_ = nullptr;
  int fault_ = 0;
};

}  // namespace

void run_input(Source& input) {
  devhost::refuse_frames_above(1u << 19);
  {
    Host host(input);
    for (int actions = 0; actions < 40 && !input.empty(); ++actions) host.act();
  }
  require(devhost::live_objects() == devhost::LiveObjects{}, "everything is given back");
  devhost::clear_errors();
}

}  // namespace filterprocessor::fuzz
