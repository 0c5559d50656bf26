#include <algorithm>
#include <ostream>

#include "commands.h"
#include "kit/common/error.h"
#include "kit/image/image_files.h"
#include "kit/pipeline/sequence.h"
#include "kit/plugin/filter_behaviour.h"
#include "progress.h"
#include "report.h"

namespace zvfilter {

namespace {

using Paths = std::vector<std::filesystem::path>;

void check_size(const std::optional<kit::Size>& size, const Paths& files, const Paths& truth) {
  const auto is_raw = [](const std::filesystem::path& file) { return kit::codec_of(file)->needs_size; };
  for (const Paths* paths : {&files, &truth}) {
    const auto raw = std::find_if(paths->begin(), paths->end(), is_raw);
    if (raw == paths->end()) continue;
    if (size) return;
    kit::refuse(raw->string(), ": a raw file does not say its size; give it with --size WxH");
  }
  if (!size) return;
  kit::refuse("--size ", size->width, 'x', size->height,
              ": is for raw files, and there is none; the others say their size");
}

kit::FrameSource open_source(const RunOptions& options) {
  if (options.camera_input) {
    const std::string& input = options.inputs.front();
    if (options.truth) kit::refuse("--truth is for files; ", input, " brings its own");
    if (options.size) kit::refuse("--size is for raw files; ", input, " takes its own: camera:size=WxH");
    return kit::camera_source(*options.camera_input, options.attributes);
  }
  const Paths truth = options.truth ? kit::collect_images({*options.truth}) : Paths{};
  const Paths files = kit::collect_images(options.inputs);
  check_size(options.size, files, truth);
  return kit::file_source(files, truth, options.size.value_or(kit::Size{}), options.attributes);
}

void note_nominal_camera(const RunOptions& options, std::ostream& notes) {
  const kit::FrameAttributes& attributes = options.attributes;
  const std::int32_t pixel_type = attributes.pixel_type.value_or(ZV_PIXEL_TYPE_DEPTH);
  const bool needed = std::any_of(options.chain.begin(), options.chain.end(), [&](const kit::Step& step) {
    return kit::uses_geometry(step.filter, pixel_type);
  });
  if (!needed || attributes.camera || (attributes.baseline && attributes.fx)) return;
  using Nominal = kit::FrameAttributes;
  const int fraction_bits = std::max(attributes.bits.value_or(16) - Nominal::kDisparityIntegerBits, 0);
  notes << "zvfilter: note: the files carry no stereo geometry; assuming a nominal camera with ";
  if (!attributes.baseline) notes << "baseline " << Nominal::kNominalBaseline << " mm, ";
  if (!attributes.fx) notes << "fx " << Nominal::kNominalFocalPerWidth << " times the width, ";
  notes << fraction_bits << " fraction bits (--baseline, --fx and --bits set them)\n";
}

}  // namespace

void run_command(const kit::Plugin& plugin, const RunOptions& options, std::ostream& out,
                 std::ostream& notes) {
  const kit::FrameSource source = open_source(options);
  const std::vector<OutputFiles> outputs = plan_outputs(source, options.output);
  kit::Pipeline pipeline(plugin, options.chain, [&](const std::string& line) {
    notes << "zvfilter: warning: " << kit::printable(line) << '\n';
  });
  if (!options.camera_input) note_nominal_camera(options, notes);

  kit::ChainResults results(options.chain);
  Progress progress(source.names.size());
  kit::SequenceVisitor visitor;
  visitor.on_stage = [&](const kit::SourceFrame& input, const kit::Stage& stage) {
    results.add(stage, input.truth);
  };
  visitor.on_result = [&](std::size_t index, const kit::SourceFrame& input, const kit::Frame& result) {
    const bool sync = options.output.sync || index + 1 == outputs.size();
    write_results(outputs[index], input.frame, result,
                  sync ? kit::Durability::synced : kit::Durability::buffered);
    progress.show(index + 1);
  };
  kit::run_sequence(source, pipeline, options.handover, visitor);
  progress.clear();
  print_results(results, out);
}

}  // namespace zvfilter
