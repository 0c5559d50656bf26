// What advice without truth is worth: scenes of the virtual camera, whose truth then judges it.
// Use: advise_proof [--evaluations N] [--first N] [--scenes N] [--seed N] [--weight NAME=VALUE]... [--real FOLDER]
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "kit/advise/advice.h"
#include "kit/common/error.h"
#include "kit/image/image_files.h"
#include "kit/pipeline/frame_source.h"
#include "kit/pipeline/workers.h"
#include "kit/plugin/plugin.h"

namespace {

struct SceneText {
  const char* name;
  const char* camera;  // beside the seed
};
constexpr SceneText kScenes[] = {
    {"as it is", ""},
    {"at rest", "motion=still"},
    {"moving camera", "motion=camera"},
    {"noise 0.05", "noise=0.05"},
    {"noise 0.1, at rest", "noise=0.1,motion=still"},
    {"noise 0.1, moving camera", "noise=0.1,motion=camera"},
    {"speckle", "speckle=0.02"},
    {"speckle, moving camera", "speckle=0.02,motion=camera"},
    {"dropouts", "dropouts=0.6"},
    {"little texture", "texture=0.5"},
    {"short baseline", "baseline=50"},
    {"large", "size=480x300,baseline=80"},
    {"one camera", "mono,motion=still"},
    {"all faults, moving camera", "noise=0.05,speckle=0.01,dropouts=0.5,motion=camera"},
};
constexpr std::size_t kFrames = 36;

kit::Footage record(const std::string& settings, std::size_t seed, const kit::Workers& workers) {
  std::string input = kit::concat("camera:frames=", kFrames, ",seed=", seed);
  if (settings.find("size=") == std::string::npos) input += ",size=320x200";
  if (settings.find("baseline=") == std::string::npos) input += ",baseline=100";
  const kit::CameraRequest request = kit::make_camera_request(
      kit::parse_camera_input(kit::concat(input, *settings.data() == 0 ? "" : ",", settings)));
  const kit::FrameSource source = kit::camera_source(request, {});
  kit::Footage footage;
  footage.frames.resize(kFrames);
  footage.truth.resize(kFrames);
  workers.for_each(kFrames, [&](std::size_t i) {
    kit::SourceFrame made = source.load(i);
    footage.frames[i] = std::move(made.frame);
    footage.truth[i] = std::move(*made.truth);
  });
  return footage;
}

kit::AdviceRequest request_of(kit::Footage footage, std::size_t evaluations,
                              const kit::Workers& workers) {
  kit::AdviceRequest request;
  request.footage = std::move(footage);
  request.evaluations = evaluations;
  request.for_each = [&workers](std::size_t count, const std::function<void(std::size_t)>& work) {
    workers.for_each(count, work);
  };
  return request;
}

/// Judged by the truth on the frames held out, where untouched frames have 1.
class Judge {
 public:
  Judge(const kit::FilterLibrary& library, const kit::Footage& footage)
      : trials_(library, footage, true, 1),
        clips_(kit::split_frames(footage.frames.size()).held_out),
        untouched_(trials_.run(kit::conversion(trials_.input()), clips_)) {}
  double loss(const kit::Chain& chain) {
    return kit::loss_of(measures(chain), untouched_, kit::default_weights(true));
  }
  kit::Measures measures(const kit::Chain& chain) { return trials_.run(chain, clips_); }

 private:
  kit::Trials trials_;
  std::vector<kit::Clip> clips_;
  kit::Measures untouched_;
};

void show(const char* name, const kit::Measures& measures, bool truth) {
  std::cout << "    " << name;
  for (const kit::MeasureText& text : kit::measure_texts()) {
    if (measures[text.measure])
      std::cout << "  " << text.name << ' '
                << kit::value_text(text.measure, measures[text.measure], truth);
  }
  std::cout << '\n';
}

struct Settings {
  std::size_t evaluations = 400, first = 0, scenes = std::size(kScenes);
  std::size_t seed = 101;            // of the first scene; the weights were chosen on others
  std::vector<std::string> weights;  // of advice without truth
  std::string real;                  // a folder of depth frames, instead of the scenes
};

struct Totals {
  std::size_t scenes = 0, enough = 0, above_defaults = 0, below_raw = 0;
};

void try_scene(const kit::FilterLibrary& library, std::size_t number, const Settings& settings,
               const kit::Workers& workers, Totals& totals) {
  const SceneText& scene = kScenes[number];
  kit::Footage footage = record(scene.camera, settings.seed + number, workers);
  kit::Footage blind = footage;
  blind.truth.clear();
  kit::AdviceRequest request = request_of(std::move(blind), settings.evaluations, workers);
  request.weights = kit::default_weights(false);
  for (const std::string& weight : settings.weights) kit::set_weight(*request.weights, weight);
  const kit::Advice without = kit::advise(library, request);
  const kit::Advice with = kit::advise(library, request_of(footage, settings.evaluations, workers));
  Judge judge(library, footage);
  const double advised = 1 - judge.loss(without.chain), best = 1 - judge.loss(with.chain);
  const double defaults = 1 - judge.loss(with.rows[1].chain);
  ++totals.scenes;
  totals.enough += advised >= 0.9 * best;
  totals.above_defaults += advised > defaults;
  totals.below_raw += advised < 0;
  std::printf("%-26s %7.3f  %13.3f  %10.3f  %3.0f %%\n", scene.name, defaults, advised, best,
              100 * advised / best);
  std::fflush(stdout);
  std::cout << "    without truth: " << kit::chain_text(without.chain)
            << "\n    with truth:    " << kit::chain_text(with.chain) << '\n';
  show("untouched    ", with.rows[0].measures, true);
  show("without truth", judge.measures(without.chain), true);
  show("with truth   ", judge.measures(with.chain), true);
  kit::Footage unseen = footage;
  unseen.truth.clear();
  kit::Trials trials(library, unseen, false, 1);
  const std::vector<kit::Clip> searched = kit::split_frames(kFrames).search;
  const kit::Measures raw = trials.run(kit::conversion(trials.input()), searched);
  const auto show_blind = [&](const char* name, const kit::Chain& chain) {
    const kit::Measures measures = trials.run(chain, searched);
    show(name, measures, false);
    std::cout << "    loss " << kit::loss_of(measures, raw, *request.weights) << '\n';
  };
  std::cout << "    frames searched on, measured without truth:\n";
  show_blind("without truth", without.chain);
  show_blind("with truth   ", with.chain);
  std::cout << "    frames held out, measured without truth:\n";
  for (const kit::AdviceRow& row : without.rows) show(row.name.c_str(), row.measures, false);
  std::cout.flush();
}

/// What the prediction of held-out frames gains.
void try_real(const kit::FilterLibrary& library, const Settings& settings, const kit::Workers& workers) {
  const kit::FrameSource source = kit::file_source(kit::collect_images({settings.real}), {}, {}, {});
  kit::Footage footage;
  for (std::size_t i = 0; i < source.names.size(); ++i) footage.frames.push_back(source.load(i).frame);
  const kit::Advice advice =
      kit::advise(library, request_of(std::move(footage), settings.evaluations, workers));
  std::cout << settings.real << ": " << source.names.size() << " frames\n    "
            << kit::chain_text(advice.chain) << '\n';
  for (const kit::AdviceRow& row : advice.rows) show(row.name.c_str(), row.measures, false);
}

Settings read_settings(int argc, char** argv) {
  Settings settings;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i], value = argv[i + 1];
    if (name == "--evaluations") {
      settings.evaluations = std::stoul(value);
    } else if (name == "--first") {
      settings.first = std::stoul(value);
    } else if (name == "--scenes") {
      settings.scenes = std::min(settings.scenes, std::stoul(value));
    } else if (name == "--seed") {
      settings.seed = std::stoul(value);
    } else if (name == "--weight") {
      settings.weights.push_back(value);
    } else if (name == "--real") {
      settings.real = value;
    } else {
      kit::refuse(name, ": expected --evaluations, --first, --scenes, --seed, --weight or --real");
    }
  }
  return settings;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Settings settings = read_settings(argc, argv);
    const kit::FilterLibrary library = kit::load_plugin(kit::default_plugin_file());
    const kit::Workers workers(0);
    if (!settings.real.empty()) {
      try_real(library, settings, workers);
      return 0;
    }
    std::puts("scene                     defaults  without truth  with truth  share");
    Totals totals;
    for (std::size_t i = settings.first; i < settings.scenes; ++i)
      try_scene(library, i, settings, workers, totals);
    std::printf(
        "%zu scenes: %zu with 90 %% of the gain and more, %zu above the defaults, %zu below raw\n",
        totals.scenes, totals.enough, totals.above_defaults, totals.below_raw);
    return totals.enough == totals.scenes && totals.below_raw == 0 ? 0 : 1;
  } catch (const std::exception& problem) {
    std::cerr << "advise_proof: " << problem.what() << '\n';
    return 1;
  }
}
