#include "run_setup.h"

#include <algorithm>
#include <functional>
#include <map>
#include <ostream>

#include "commands.h"
#include "interruption.h"
#include "kit/common/error.h"
#include "kit/filter/filter_behaviour.h"
#include "kit/frame/camera_file.h"
#include "kit/image/image_files.h"
#include "kit/texts/presets.h"

namespace zvfilter {

namespace {

using Paths = std::vector<std::filesystem::path>;

/// What the command line says of files and streams that don't say it themselves.
kit::ReadOptions read_options(const RunOptions& options) {
  const kit::FrameAttributes& attributes = options.attributes;
  kit::ReadOptions read;
  read.size = options.size.value_or(kit::Size{});
  read.raw_order = options.output.raw_order;
  const float of_camera = attributes.camera ? attributes.camera->traits.value_scale : 1.0f;
  constexpr double millimetres_a_metre = 1000;
  if (options.metres)
    read.units_a_metre = millimetres_a_metre / double{attributes.value_scale.value_or(of_camera)};
  return read;
}

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

void check_formats(const RunOptions& options, const Paths& files) {
  const auto any = [&](auto holds) { return std::any_of(files.begin(), files.end(), holds); };
  const auto is = [](const char* format) {
    return [format](const std::filesystem::path& file) { return kit::codec_of(file)->name == format; };
  };
  if (options.metres && any(std::not_fn(is("npy"))))
    kit::refuse("--metres is for .npy files in floating point, and not all are .npy files");
  if (options.endian_said && !any(is("raw")) &&
      !(options.output.format && (*options.output.format)->needs_size))
    kit::refuse("--endian is for raw images, and there is none");
  if (options.stream_format != nullptr)
    kit::refuse("--input-format is for standard input, which is named -");
}

/// The camera.json beside the files is what they are, unless the command line says it.
void use_camera_file(const RunOptions& options, kit::FrameAttributes& attributes, const Paths& files,
                     std::ostream& notes) {
  if (options.camera_said) return;
  const auto found = kit::find_camera_file(files);
  if (!found) return;
  notes << "zvfilter: note: using " << kit::printable(found->string())
        << (attributes.camera ? " instead of the chain file's input\n" : "\n");
  attributes.camera = kit::read_camera_file(*found);
}

/// The frames of some files or, where there is one, a folder.
/// @param attributes of the frames, which a camera.json beside them may say
kit::FrameSource open_files(const RunOptions& options, kit::FrameAttributes& attributes,
                            const std::vector<std::string>& inputs,
                            const std::optional<std::filesystem::path>& truth_folder,
                            std::ostream& notes) {
  kit::Selection any_format;
  any_format.one_format = false;
  const Paths truth = truth_folder ? kit::collect_images({truth_folder->string()}, any_format) : Paths{};
  const Paths files = kit::collect_images(inputs, options.selection);
  check_size(options.size, files, truth);
  check_formats(options, files);
  use_camera_file(options, attributes, files, notes);
  return kit::file_source(files, truth, read_options(options), attributes);
}

kit::FrameSource open_camera(const RunOptions& options) {
  const std::string& input = options.inputs.front();
  if (options.truth) kit::refuse("--truth is for files; ", input, " brings its own");
  if (options.size) kit::refuse("--size is for raw files; ", input, " takes its own: camera:size=WxH");
  return kit::camera_source(*options.camera_input, options.attributes);
}

kit::FrameSource open_standard_input(RunOptions& options) {
  if (options.truth) kit::refuse("--truth is for files; standard input has none");
  if (options.output.preview) kit::refuse("--preview is for files; standard input has none");
  if (!options.report.file.empty()) kit::refuse("--report is for files; standard input has none");
  if (options.existing == Existing::resume)
    kit::refuse("--resume: standard input cannot be read again from its start");
  const kit::Codec* const codec =
      options.stream_format != nullptr ? options.stream_format : options.output.format.value_or(nullptr);
  if (codec == nullptr || codec->header == nullptr)
    kit::refuse(
        "standard input has no name to tell its format; choose with --input-format raw, pgm or npy");
  kit::ReadOptions read = read_options(options);
  if (read.size == kit::Size{}) read.size = options.expected_size.value_or(kit::Size{});
  if (codec->needs_size && read.size == kit::Size{})
    kit::refuse("raw frames do not say their size; give it with --size WxH");
  if (!options.output.format) options.output.format = codec;
  return kit::standard_input_source(*codec, read, options.attributes, Interruption::asked);
}

/// The folder's own name, however it is written.
std::string folder_name(const std::string& folder) {
  std::error_code none;
  return std::filesystem::weakly_canonical(folder, none).filename().string();
}

/// Whether the inputs are several folders, each a sequence of its own.
bool are_folders(const std::vector<std::string>& inputs) {
  std::error_code none;
  const auto folders = std::count_if(inputs.begin(), inputs.end(), [&](const std::string& input) {
    return std::filesystem::is_directory(input, none);
  });
  if (folders > 1 && static_cast<std::size_t>(folders) < inputs.size()) {
    kit::refuse(
        "several folders and files together; expected either: each of several folders is a sequence");
  }
  return folders > 1;
}

std::vector<Sequence> open_folders(const RunOptions& options, std::ostream& notes) {
  std::vector<Sequence> sequences;
  std::map<std::string, std::string> named;
  for (const std::string& folder : options.inputs) {
    const std::string name = folder_name(folder);
    const auto [other, fresh] = named.emplace(name, folder);
    if (!fresh) {
      kit::refuse(other->second, " and ", folder, " have one name, ", name,
                  ", as have their results; run them one by one");
    }
    const auto truth =
        options.truth ? std::optional(*options.truth / std::filesystem::path(name)) : std::nullopt;
    kit::FrameAttributes attributes = options.attributes;
    kit::FrameSource source = open_files(options, attributes, {folder}, truth, notes);
    sequences.push_back({name, {folder}, std::move(source), options.output.folder / name, {}});
  }
  return sequences;
}

/// The frames are what the chain file says.
void expect_size(kit::FrameSource& source, const kit::Size& size) {
  source.load = [load = source.load, names = source.names, size](std::size_t index) {
    kit::SourceFrame loaded = load(index);
    const kit::Frame& frame = loaded.frame;
    if (frame.width == size.width && frame.height == size.height) return loaded;
    kit::fail(names[index].label, ": has ", frame.width, 'x', frame.height,
              " pixels; the chain file's input has ", size.width, 'x', size.height);
  };
}

}  // namespace

kit::Chain open_chain(RunOptions& options) {
  kit::Chain chain = options.filters;
  if (chain.empty()) {
    if (options.chain.empty() && options.preset.empty()) {
      kit::refuse("no filter is named; expected -f NAME, --preset NAME or --chain FILE");
    }
    kit::ChainFile file =
        options.preset.empty()
            ? read_chain(options.chain)
            : kit::parse_chain(kit::preset_named(options.preset).chain, "preset " + options.preset);
    chain = std::move(file.steps);
    if (file.input && file.input->has_size())
      options.expected_size = {file.input->traits.width, file.input->traits.height};
    if (file.input && !options.attributes.camera) options.attributes.camera = std::move(file.input);
  }
  override_values(chain, options.settings);
  return chain;
}

std::vector<Sequence> open_sequences(RunOptions& options, std::ostream& notes) {
  std::vector<Sequence> sequences;
  if (std::count(options.inputs.begin(), options.inputs.end(), kStandard) > 0) {
    if (options.inputs.size() > 1) kit::refuse("- is standard input and has to be the only input");
    sequences.push_back({"", options.inputs, open_standard_input(options), options.output.folder, {}});
    return sequences;
  }
  if (!options.camera_input && are_folders(options.inputs)) {
    sequences = open_folders(options, notes);
  } else {
    kit::FrameSource source = options.camera_input ? open_camera(options)
                                                   : open_files(options, options.attributes,
                                                                options.inputs, options.truth, notes);
    sequences.push_back({"", options.inputs, std::move(source), options.output.folder, {}});
  }
  for (Sequence& sequence : sequences) {
    if (options.expected_size) expect_size(sequence.source, *options.expected_size);
  }
  return sequences;
}

void plan_sequences(std::vector<Sequence>& sequences, const RunOptions& options) {
  if (is_standard(options.output.folder)) return;
  InputFiles inputs;
  for (const Sequence& sequence : sequences) inputs.add(sequence.source);
  for (Sequence& sequence : sequences) {
    OutputSettings settings = options.output;
    settings.folder = sequence.folder;
    sequence.outputs = plan_outputs(sequence.source, inputs, settings);
  }
}

void note_nominal_camera(const RunOptions& options, const kit::Chain& chain, std::ostream& notes) {
  const kit::FrameAttributes& attributes = options.attributes;
  const std::int32_t pixel_type = attributes.pixel_type.value_or(
      attributes.camera ? attributes.camera->traits.pixel_type : ZV_PIXEL_TYPE_DEPTH);
  const bool needed = std::any_of(chain.begin(), chain.end(), [&](const kit::Step& step) {
    return kit::uses_geometry(step.filter, pixel_type);
  });
  if (!needed || attributes.has_geometry()) return;
  using Nominal = kit::FrameAttributes;
  const int fraction_bits = std::max(attributes.bits.value_or(16) - kit::Input::kNominalIntegerBits, 0);
  notes << "zvfilter: note: the files carry no stereo geometry; assuming a nominal camera with ";
  if (!attributes.baseline) notes << "baseline " << Nominal::kNominalBaseline << " mm, ";
  if (!attributes.fx) notes << "fx " << Nominal::kNominalFocalPerWidth << " times the width, ";
  notes << fraction_bits << " fraction bits (--baseline, --fx and --bits set them)\n";
}

}  // namespace zvfilter
