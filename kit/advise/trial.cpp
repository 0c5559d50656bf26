#include "kit/advise/trial.h"

#include <algorithm>
#include <utility>

#include "disparity_code.h"
#include "kit/advise/roughness.h"
#include "kit/common/error.h"

namespace kit {

namespace {

constexpr std::size_t kPlantedFrames = 4;  // of a clip
constexpr std::size_t kMostKept = std::size_t{256} << 20;

std::uint16_t invalid_pixel(const Frame& frame) {
  if (frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY) return 0;
  const unsigned invalid = devhost::DisparityCode(frame.disparity, 0).invalid();
  return static_cast<std::uint16_t>(frame.format == ZV_FORMAT_PACKED_CODE ? invalid << 4 : invalid);
}

Frame without_pixels(const Frame& frame) {
  Frame description = frame_of(FrameView(frame, frame.disparity, {}));
  description.type = frame.type;
  description.bits = frame.bits;
  description.metadata = frame.metadata;
  description.intrinsic = frame.intrinsic;
  return description;
}

Chain steps_on(const Chain& chain) {
  Chain on;
  std::copy_if(chain.begin(), chain.end(), std::back_inserter(on),
               [](const Step& step) { return step.enabled; });
  return on;
}

}  // namespace

/// What some steps made of a clip.
struct Trials::Made {
  Input output;
  std::vector<std::vector<std::uint16_t>> frames;

  FrameView view(std::size_t frame) const {
    return {output.traits, output.traits.disparity, frames[frame]};
  }
  std::size_t bytes() const {
    std::size_t sum = 0;
    for (const auto& frame : frames) sum += frame.size() * sizeof(std::uint16_t);
    return sum;
  }
};

struct Trials::Tally {
  Prediction prediction;
  ErrorCounts unevenness;
  Rest rest;
  Hidden hidden;
  FilledHoles holes;
  Speckles spots;
  Accuracy accuracy;
  double pixels = 0, valid = 0;

  Measures measures(bool with_truth) const;
};

Measures Trials::Tally::measures(bool with_truth) const {
  using enum Measure;
  Measures result;
  const auto share = [](double part, double whole) {
    return whole > 0 ? std::optional(part / whole) : std::nullopt;
  };
  if (with_truth) {
    const AccuracySummary summary = accuracy.summary();
    if (summary.coverage) result[missing] = 1 - *summary.coverage;
    result[median] = summary.median;
    result[percentile95] = summary.percentile95;
    result[off] = summary.off;
    result[flicker] = summary.flicker;
    return result;
  }
  result[missing] = share(pixels - valid, pixels);
  // Of what is filled within a surface the hidden pixels tell how good it is.
  const double seen = prediction.errors.total();
  const double filled = holes.within + holes.between.errors.total();
  const double part = seen / std::max(valid - filled, 1.0);  // of the pixels seen, those predicted
  ErrorCounts errors = prediction.errors;
  errors.add(hidden.errors.errors, part * holes.within);
  errors.add(holes.between.errors, part * holes.between.errors.total());
  result[median] = errors.quantile(0.5);
  result[percentile95] = errors.quantile(0.95);
  const double wrong = hidden.filled > 0 ? hidden.errors.off / hidden.filled : 1;
  result[off] =
      share(prediction.off + part * (wrong * holes.within + holes.between.off), seen + part * filled);
  result[flicker] = rest.changes.quantile(0.5);
  result[roughness] = unevenness.quantile(0.5);
  result[speckles] = share(spots.left, spots.count);
  result[lost] = share(rest.lost, rest.seen);
  constexpr double kFewestAtEdges = 400;  // a single one is not to pass the limit
  if (rest.at_edges >= kFewestAtEdges) result[moved] = rest.moved / rest.at_edges;
  return result;
}

Trials::Trials(const FilterLibrary& library, const Footage& footage, bool with_truth, std::uint64_t seed)
    : library_(library),
      footage_(footage),
      with_truth_(with_truth),
      lattice_(footage.frames.at(0).width, footage.frames.at(0).height) {
  const Frame& first = footage.frames.front();
  const std::size_t count = footage.frames.size();
  input_ = {without_pixels(first), footage.has_geometry, true};
  raw_.resize(count);
  surfaces_.resize(count);
  behind_.resize(count);
  truth_.resize(count);
  planted_.resize(count);
  hidden_.resize(count);
  speckles_.resize(count);
  const InverseTable inverses(first);
  Chance chance(seed);
  for (std::size_t i = 0; i < count; ++i) {
    const Frame& frame = footage.frames[i];
    if (frame.pixels.empty()) continue;
    if (frame.width != first.width || frame.height != first.height ||
        frame.pixel_type != first.pixel_type) {
      refuse("frame ", i, " is ", frame.width, 'x', frame.height, ", ", pixel_type_name(frame.pixel_type),
             "; the first is ", first.width, 'x', first.height, ", ", pixel_type_name(first.pixel_type));
    }
    if (with_truth_) {
      const Image& truth = footage.truth.at(i);
      truth_[i] = {lattice_.columns(), lattice_.rows(), lattice_.sample(truth.pixels)};
      continue;
    }
    raw_[i] = inverses(lattice_.sample(frame.pixels));
    surfaces_[i] = surfaces_of(raw_[i], lattice_);
    behind_[i] = behind_holes(raw_[i], lattice_);
    planted_[i] = frame;
    PlantedFrame planting{planted_[i], inverses, invalid_pixel(first)};
    hidden_[i] = hide_pixels(planting, chance);
    speckles_[i] = plant_speckles(planting, chance);
  }
}

Trials::~Trials() = default;

std::shared_ptr<const Trials::Made> Trials::find(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(kept_.begin(), kept_.end(), [&](const auto& each) { return each.first == key; });
  if (found == kept_.end()) return nullptr;
  kept_.splice(kept_.begin(), kept_, found);
  return found->second;
}

void Trials::keep(const std::string& key, std::shared_ptr<const Made> made) {
  const std::lock_guard lock(mutex_);
  kept_bytes_ += made->bytes();
  kept_.emplace_front(key, std::move(made));
  while (kept_bytes_ > kMostKept && kept_.size() > 1) {
    kept_bytes_ -= kept_.back().second->bytes();
    kept_.pop_back();
  }
}

/// Candidates share the steps they begin with, so what those made is kept.
std::shared_ptr<const Trials::Made> Trials::make(const Chain& chain, const Clip& clip, bool planted) {
  const Chain steps = steps_on(chain);
  std::vector<std::string> keys = {concat(planted ? "planted " : "", clip.first, ' ', clip.count)};
  for (const Step& step : steps) keys.push_back(concat(keys.back(), ';', step_text(step)));
  std::shared_ptr<const Made> begun;
  std::size_t done = steps.size();
  while (done > 0 && !(begun = find(keys[done]))) --done;
  const Chain rest(steps.begin() + static_cast<std::ptrdiff_t>(done), steps.end());
  if (begun && rest.empty()) return begun;

  Pipeline pipeline(library_, rest);
  pipeline.set_input(begun ? begun->output : input_);
  pipeline.keep_stages(true);
  std::vector<std::shared_ptr<Made>> made(rest.size() + 1);
  for (auto& each : made) each = std::make_shared<Made>();
  const std::size_t count = planted ? std::min(clip.count, kPlantedFrames) : clip.count;
  for (std::size_t i = 0; i < count; ++i) {
    const Frame& own = (planted ? planted_ : footage_.frames)[clip.first + i];
    const std::vector<std::uint16_t>& pixels = begun ? begun->frames[i] : own.pixels;
    pipeline.run({pixels.data(), pipeline.input().traits.width * sizeof(std::uint16_t)});
    if (rest.empty()) made[0]->frames.push_back(pixels);
    for (std::size_t step = 0; step < rest.size(); ++step) {
      const zv_frame_t* const frame = pipeline.stage(step).frame.get();
      const std::uint16_t* const from = framehost::pixels_of(frame);
      made[step + 1]->frames.emplace_back(from, from + framehost::pixel_count(frame));
      if (i > 0) continue;
      Input& output = made[step + 1]->output = pipeline.input();
      output.traits = framehost::traits_of(frame);
      if (const hosts::ProfileTraits* profile = framehost::profile_of(frame)) {
        output.traits.disparity = profile->disparity;
        output.traits.intrinsic = profile->intrinsic;
      }
    }
  }
  if (rest.empty()) made[0]->output = input_;
  const hosts::FrameTraits& result = made.back()->output.traits;
  if (result.width != input_.traits.width || result.height != input_.traits.height)
    refuse("the chain makes frames of ", result.width, 'x', result.height,
           "; expected one that keeps their size, ", input_.traits.width, 'x', input_.traits.height);
  for (std::size_t step = 0; step + 1 < rest.size(); ++step) keep(keys[done + step + 1], made[step + 1]);
  return made.back();
}

const RestingPlaces& Trials::resting(const Clip& clip) {
  const std::lock_guard lock(mutex_);
  auto& found = resting_[{clip.first, clip.count}];
  if (!found)
    found = std::make_shared<RestingPlaces>(std::span(raw_).subspan(clip.first, clip.count), lattice_);
  return *found;
}

void Trials::measure(const Made& made, const Clip& clip, Tally& tally) {
  if (with_truth_) {
    Frame sampled = made.output.traits;
    sampled.width = lattice_.columns();
    sampled.height = lattice_.rows();
    Accuracy accuracy;  // of one clip: the last frame of another is not the one before
    for (std::size_t i = clip.measured; i < clip.count; ++i) {
      sampled.pixels = lattice_.sample(made.frames[i]);
      accuracy.add(sampled, truth_[clip.first + i]);
    }
    tally.accuracy.add(accuracy);
    return;
  }
  const InverseTable inverses(made.view(0));
  const RestingPlaces& at_rest = resting(clip);
  Inverses last;
  const std::size_t from = clip.measured > 0 ? clip.measured - 1 : 0;
  for (std::size_t i = from; i < clip.count; ++i) {
    Inverses filtered = inverses(lattice_.sample(made.frames[i]));
    const Inverses& raw = raw_[clip.first + i];
    if (i + 1 < clip.count) tally.prediction.add(filtered, raw, surfaces_[clip.first + i + 1]);
    if (clip.count == 1) tally.prediction.add(filtered, raw, surfaces_[clip.first]);
    if (i >= clip.measured) {
      add_roughness(filtered, lattice_, tally.unevenness);
      tally.rest.add(at_rest, raw, filtered, last);
      tally.holes.add(behind_[clip.first + i], raw, filtered);
      tally.valid += static_cast<double>(
          std::count_if(filtered.begin(), filtered.end(), [](float inverse) { return inverse > 0; }));
      tally.pixels += static_cast<double>(filtered.size());
    }
    last = std::move(filtered);
  }
}

void Trials::measure_planted(const Made& made, const Clip& clip, Tally& tally) const {
  const InverseTable inverses(made.view(0));
  for (std::size_t i = 0; i < made.frames.size(); ++i) {
    tally.hidden.add(hidden_[clip.first + i], inverses, made.frames[i]);
    tally.spots.add(speckles_[clip.first + i], inverses, made.frames[i]);
  }
}

Measures Trials::run(const Chain& chain, const std::vector<Clip>& clips) {
  Tally tally;
  for (const Clip& clip : clips) {
    measure(*make(chain, clip, false), clip, tally);
    if (with_truth_) continue;
    // Of frames that are measured only.
    const Clip part = {clip.first + clip.measured, clip.count - clip.measured, 0};
    measure_planted(*make(chain, part, true), part, tally);
  }
  return tally.measures(with_truth_);
}

}  // namespace kit
