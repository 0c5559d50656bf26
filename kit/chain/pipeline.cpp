#include "kit/chain/pipeline.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <tuple>
#include <utility>

#include "kit/chain/configuration.h"
#include "kit/common/error.h"
#include "kit/common/suggestions.h"
#include "kit/filter/filter_behaviour.h"

namespace kit {

namespace {

/// Does what concerns a step, whose name its errors get.
template <typename Work>
auto about_step(const Chain& chain, std::size_t step, const Work& work) {
  try {
    return work();
  } catch (const Error& problem) {
    const Step& each = chain[step];
    throw Error(problem.kind(), concat(step_name(chain, step), ": ", problem.what()),
                {static_cast<int>(step), each.tag.empty() ? each.filter : each.tag, problem.place().key});
  }
}

bool same(const ZVDisparityParam& a, const ZVDisparityParam& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

bool same(const ZVCameraIntrinsic& a, const ZVCameraIntrinsic& b) {
  const auto fields = [](const ZVCameraIntrinsic& i) {
    return std::tuple(i.fx, i.fy, i.cx, i.cy, i.width, i.height);
  };
  return fields(a) == fields(b);
}

bool same(const Input& a, const Input& b) {
  const auto fields = [](const Input& i) {
    const hosts::FrameTraits& t = i.traits;
    return std::tie(i.has_geometry, i.has_intrinsics, t.format, t.width, t.height, t.pixel_type, t.bits,
                    t.value_scale, t.metadata);
  };
  return fields(a) == fields(b) && same(a.traits.disparity, b.traits.disparity) &&
         same(a.traits.intrinsic, b.traits.intrinsic);
}

std::size_t row_bytes(const hosts::FrameTraits& traits) { return traits.width * sizeof(std::uint16_t); }

}  // namespace

Pipeline::Pipeline(const FilterLibrary& library, const Chain& chain)
    : library_(library), pool_(framehost::make_pool()), chain_(chain) {
  check_tags(chain_);
  for (std::size_t i = 0; i < chain_.size(); ++i) runners_.push_back(make_runner(chain_, i));
}

Pipeline::Runner Pipeline::make_runner(const Chain& chain, std::size_t step) const {
  return about_step(chain, step, [&] {
    const framehost::Scope scope(*pool_);
    Filter filter = library_.create(chain[step].filter);
    std::vector<SchemaParameter> parameters = filter.parameters();
    Runner runner = {std::move(filter), std::move(parameters)};
    if (chain[step].values) configure_runner(runner, *chain[step].values);
    return runner;
  });
}

void Pipeline::configure_runner(Runner& runner, const Values& values) const {
  const framehost::Scope scope(*pool_);
  const std::string& name = runner.filter.name();
  for (const auto& each :
       configurations(name, runner.parameters, configuration_values(name, values, runner.parameters))) {
    runner.filter.configure(each);
  }
}

void Pipeline::insert(std::size_t at, const Step& step) {
  Chain chain = chain_;
  chain.insert(chain.begin() + static_cast<std::ptrdiff_t>(at), step);
  check_tags(chain);
  Runner runner = make_runner(chain, at);
  runners_.insert(runners_.begin() + static_cast<std::ptrdiff_t>(at), std::move(runner));
  chain_ = std::move(chain);
  output_known_ = false;
}

void Pipeline::remove(std::size_t step) {
  chain_.erase(chain_.begin() + static_cast<std::ptrdiff_t>(step));
  runners_.erase(runners_.begin() + static_cast<std::ptrdiff_t>(step));
  output_known_ = false;
}

void Pipeline::move(std::size_t step, std::size_t to) {
  const auto rotate = [&](auto& items) {
    const auto from = items.begin() + static_cast<std::ptrdiff_t>(step);
    const auto target = items.begin() + static_cast<std::ptrdiff_t>(to);
    if (step < to) std::rotate(from, from + 1, target + 1);
    if (to < step) std::rotate(target, from, from + 1);
  };
  rotate(chain_);
  rotate(runners_);
  output_known_ = false;
}

void Pipeline::enable(std::size_t step, bool enabled) {
  if (chain_[step].enabled != enabled) output_known_ = false;
  chain_[step].enabled = enabled;
}

void Pipeline::configure(std::size_t step, const Values& values) {
  about_step(chain_, step, [&] {
    // Before anything changes: a filter that refuses a value has stored others by then.
    configuration_values(chain_[step].filter, values, runners_[step].parameters);
    configure_runner(runners_[step], values);
  });
  chain_[step].values = values;
  if (changes_size(chain_[step].filter)) output_known_ = false;
}

void Pipeline::reset() {
  for (std::size_t i = 0; i < chain_.size(); ++i) runners_[i] = make_runner(chain_, i);
  output_known_ = false;
}

void Pipeline::set_input(const Input& input) {
  if (profile_ && same(input, input_)) return;
  const hosts::FrameTraits& traits = input.traits;
  framehost::Profile profile = framehost::make_profile(
      *pool_, {traits.format, traits.width, traits.height, traits.intrinsic, traits.disparity});
  if (profile_) reset();
  input_ = input;
  profile_ = std::move(profile);
  output_known_ = false;
}

const Input& Pipeline::output() {
  if (!output_known_) try_empty_frame();
  return output_;
}

void Pipeline::try_empty_frame() {
  const framehost::Scope scope(*pool_);
  // On filters of its own, so that those of the chain see nothing of it.
  Pipeline trial(library_, {});
  trial.chain_ = chain_;
  trial.input_ = input_;
  framehost::Frame frame = framehost::make_frame(*pool_, input_.traits, profile_);
  std::memset(framehost::pixels_of(frame.get()), 0,
              framehost::pixel_count(frame.get()) * sizeof(std::uint16_t));
  for (std::size_t i = 0; i < chain_.size(); ++i) {
    trial.runners_.push_back(trial.make_runner(chain_, i));
    if (!chain_[i].enabled) continue;
    const hosts::FrameTraits& traits = framehost::traits_of(frame.get());
    if (const auto derived =
            derived_values(chain_[i].filter, chain_[i].values, traits.width, traits.height)) {
      about_step(chain_, i, [&] {
        trial.configure_runner(trial.runners_[i], *derived);
        configure_runner(runners_[i], *derived);
      });
    }
    frame = trial.process(i, frame.get());
  }
  Input output = input_;
  output.traits = framehost::traits_of(frame.get());
  if (const hosts::ProfileTraits* profile = framehost::profile_of(frame.get())) {
    output.traits.intrinsic = profile->intrinsic;
    output.traits.disparity = profile->disparity;
  }
  output_ = std::move(output);
  output_known_ = true;
}

void Pipeline::check_geometry(std::size_t step, const zv_frame_t* frame) const {
  const std::int32_t pixel_type = framehost::traits_of(frame).pixel_type;
  if (input_.has_geometry || !uses_geometry(chain_[step].filter, pixel_type)) return;
  refuse_key("disparity", "needs the camera's geometry for ", pixel_type_name(pixel_type),
             " frames: give the baseline and fx",
             pixel_type == ZV_PIXEL_TYPE_DEPTH ? ", or say that the frames are linear depth" : "");
}

framehost::Frame Pipeline::process(std::size_t step, const zv_frame_t* frame) {
  return about_step(chain_, step, [&] {
    const framehost::Frame depth = framehost::depth_frame_of(frame);
    check_geometry(step, depth.get());
    framehost::Frame made = runners_[step].filter.process(frame);
    const framehost::Frame made_depth = framehost::depth_frame_of(made.get());
    const hosts::FrameTraits& traits = framehost::traits_of(made_depth.get());
    if (traits.width == 0 || traits.height == 0 ||
        framehost::pixel_count(made_depth.get()) != std::size_t{traits.width} * traits.height) {
      fail(chain_[step].filter, " gave a frame of ", traits.width, 'x', traits.height, " with ",
           framehost::pixel_count(made_depth.get()), " pixels");
    }
    return made;
  });
}

framehost::Frame Pipeline::run(const Rows& rows, void* memory, Handover handover) {
  const hosts::FrameTraits& result = output().traits;
  framehost::Scope scope(*pool_);
  const bool as_it_is = rows.stride == row_bytes(input_.traits) &&
                        reinterpret_cast<std::uintptr_t>(rows.pixels) % alignof(std::uint16_t) == 0;
  framehost::Frame frame = as_it_is
                               ? framehost::borrow_frame(*pool_, input_.traits, profile_, rows.pixels)
                               : framehost::make_frame(*pool_, input_.traits, profile_);
  if (!as_it_is) {
    auto* to = reinterpret_cast<unsigned char*>(framehost::pixels_of(frame.get()));
    const auto* from = reinterpret_cast<const unsigned char*>(rows.pixels);
    const std::size_t bytes = row_bytes(input_.traits);
    for (std::uint32_t y = 0; y < input_.traits.height; ++y)
      std::memcpy(to + y * bytes, from + y * rows.stride, bytes);
  }
  if (handover == Handover::frame_set) frame = framehost::make_frame_set(*pool_, std::move(frame));

  std::size_t last = chain_.size();
  for (std::size_t i = 0; i < chain_.size(); ++i) {
    runners_[i].stage.frame.reset();
    runners_[i].stage.milliseconds = 0;
    if (chain_[i].enabled) last = i;
  }
  for (std::size_t i = 0; i < chain_.size(); ++i) {
    if (!chain_[i].enabled) continue;
    if (i == last && memory != nullptr)
      scope.offer(memory, std::size_t{result.width} * result.height * sizeof(std::uint16_t));
    const auto start = std::chrono::steady_clock::now();
    frame = process(i, frame.get());
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    runners_[i].stage.milliseconds = taken.count();
    if (keep_stages_) runners_[i].stage.frame = framehost::depth_frame_of(frame.get());
  }
  return framehost::depth_frame_of(frame.get());
}

void Pipeline::keep_stages(bool keep) {
  keep_stages_ = keep;
  if (keep) return;
  for (Runner& runner : runners_) runner.stage.frame.reset();
}

double value_of(const Pipeline& pipeline, std::size_t step, const std::string& key) {
  std::vector<std::string> names;
  for (const SchemaParameter& parameter : pipeline.parameters(step)) {
    names.push_back(parameter.name);
    if (parameter.name != key) continue;
    const std::optional<Values>& values = pipeline.chain()[step].values;
    const bool given = values && values->contains(key);
    return parse_number(given ? values->at(key) : parameter.default_value).value_or(0);
  }
  about_step(pipeline.chain(), step,
             [&] { refuse_key(key, "unknown key ", key, "; ", suggest(key, names)); });
  return 0;
}

}  // namespace kit
