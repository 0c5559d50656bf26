#include "commands.h"

#include <algorithm>
#include <iomanip>
#include <memory>
#include <ostream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "camera_file.h"
#include "chain.h"
#include "failure.h"
#include "files.h"
#include "filter_behaviour.h"
#include "frame_attributes.h"
#include "frame_source.h"
#include "outputs.h"
#include "plugin.h"
#include "progress.h"
#include "report.h"
#include "run.h"

namespace zvfilter {

using filterprocessor::SchemaParameter;

namespace {

Plugin open_plugin(const std::optional<std::string>& file) {
  return Plugin(file ? std::filesystem::path(*file) : Plugin::default_file());
}

std::vector<SchemaParameter> schema_of(const Filter& filter) {
  try {
    return filterprocessor::parse_schema(filter.schema());
  } catch (const std::invalid_argument& problem) {
    fail_run(filter.name() + ": " + problem.what());
  }
}

nlohmann::ordered_json json_number(const std::string& type, const std::string& text) {
  if (const auto integer = type != "float" ? parse_integer(text) : std::nullopt) return *integer;
  if (const auto number = parse_number(text)) return *number;
  return text;
}

nlohmann::ordered_json json_parameters(const std::vector<SchemaParameter>& schema) {
  auto parameters = nlohmann::ordered_json::array();
  for (const SchemaParameter& p : schema) {
    parameters.push_back({{"name", p.name},
                          {"type", p.type},
                          {"min", json_number(p.type, p.min)},
                          {"max", json_number(p.type, p.max)},
                          {"step", json_number(p.type, p.step)},
                          {"default", json_number(p.type, p.default_value)},
                          {"description", p.description}});
  }
  return parameters;
}

void print_parameters(const std::vector<SchemaParameter>& schema, std::ostream& out) {
  std::size_t width = 0;
  for (const SchemaParameter& p : schema) width = std::max(width, p.name.size());
  for (const SchemaParameter& p : schema) {
    out << "     " << std::left << std::setw(static_cast<int>(width)) << p.name << "  " << std::setw(8)
        << p.type << "  " << p.min << " to " << p.max << ", step " << p.step << ", default "
        << p.default_value << '\n';
  }
}

double positive(const char* option, const std::string& text) {
  const auto value = parse_number(text);
  if (!value || *value <= 0) fail_usage(concat(option, " ", text, ": expected a number above 0"));
  return *value;
}

std::int32_t pixel_type_code(const std::string& text) {
  if (text == "depth") return ZV_PIXEL_TYPE_DEPTH;
  if (text == "disparity") return ZV_PIXEL_TYPE_DISPARITY;
  if (text == "linear") return ZV_PIXEL_TYPE_LINEAR_DEPTH;
  const auto code = parse_integer(text);
  if (!code)
    fail_usage("--pixel-type " + text + ": expected depth, disparity, linear or the host's number");
  return *code;
}

FrameAttributes frame_attributes(const RunOptions& options) {
  FrameAttributes attributes;
  if (options.camera) attributes.camera = read_camera_file(*options.camera);
  if (options.value_scale) {
    attributes.value_scale = static_cast<float>(positive("--value-scale", *options.value_scale));
  }
  if (options.bits) {
    const auto bits = parse_integer(*options.bits);
    if (!bits || *bits < 1 || *bits > 16) fail_usage("--bits " + *options.bits + ": expected 1 to 16");
    attributes.bits = static_cast<std::uint8_t>(*bits);
  }
  if (options.pixel_type) attributes.pixel_type = pixel_type_code(*options.pixel_type);
  if (options.baseline) attributes.baseline = positive("--baseline", *options.baseline);
  if (options.fx) attributes.fx = positive("--fx", *options.fx);
  return attributes;
}

std::optional<Size> raw_size(const RunOptions& options) {
  if (!options.size) return std::nullopt;
  const auto size = parse_size(*options.size);
  if (!size) fail_usage("--size " + *options.size + ": expected WIDTHxHEIGHT, for example 640x480");
  return size;
}

OutputSettings output_settings(const RunOptions& options) {
  if (options.output.empty()) fail_usage("the folder for the results has no name");
  OutputSettings settings{options.output, nullptr, options.preview};
  if (options.format) {
    settings.format = codec_named(*options.format);
    if (settings.format == nullptr) {
      fail_usage("--format " + *options.format + ": expected png, pgm, npy or raw");
    }
  }
  return settings;
}

/// A filter and the values it is to be configured with.
struct ChainLink {
  Filter filter;
  std::optional<std::vector<std::string>> values;
};

ChainLink make_link(const Plugin& plugin, const std::string& text, std::ostream& notes) {
  const FilterRequest request = parse_filter_request(text);
  ChainLink link{plugin.create(request.name), std::nullopt};
  if (!request.values) return link;
  if (ignores_configuration(request.name)) {
    notes << "zvfilter: warning: " << request.name
          << ": the filter has no parameters and will ignore any\n";
    link.values.emplace();
    for (const auto& value : *request.values) link.values->push_back(value.second);
    return link;
  }
  const std::vector<SchemaParameter> schema = schema_of(link.filter);
  link.values = configuration_values(request, schema);
  for (const std::string& warning : configuration_warnings(request.name, schema, *link.values)) {
    notes << "zvfilter: warning: " << warning << '\n';
  }
  return link;
}

void note_nominal_camera(const std::vector<ChainLink>& links, const FrameAttributes& attributes,
                         std::ostream& notes) {
  const std::int32_t pixel_type = attributes.pixel_type.value_or(ZV_PIXEL_TYPE_DEPTH);
  const bool needed = std::any_of(links.begin(), links.end(), [&](const ChainLink& link) {
    return uses_geometry(link.filter.name(), pixel_type);
  });
  if (!needed || attributes.camera || (attributes.baseline && attributes.fx)) return;
  const int fraction_bits =
      std::max(attributes.bits.value_or(16) - FrameAttributes::kDisparityIntegerBits, 0);
  notes << "zvfilter: note: the files carry no stereo geometry; assuming a nominal camera with ";
  if (!attributes.baseline) notes << "baseline " << FrameAttributes::kNominalBaseline << " mm, ";
  if (!attributes.fx) notes << "fx " << FrameAttributes::kNominalFocalPerWidth << " times the width, ";
  notes << fraction_bits << " fraction bits (--baseline, --fx and --bits set them)\n";
}

std::unique_ptr<FrameSource> open_source(const RunOptions& options, const FrameAttributes& attributes) {
  const std::optional<Size> size = raw_size(options);
  for (const std::string& input : options.inputs) {
    if (!input.starts_with(kCameraInput)) continue;
    if (options.inputs.size() > 1) fail_usage(input + " has to be the only input");
    if (options.truth) fail_usage("--truth is for files; " + input + " brings its own");
    if (options.size) fail_usage("--size is for raw files; " + input + " takes its own: camera:size=WxH");
    return std::make_unique<CameraSource>(make_camera_request(parse_camera_input(input)), attributes);
  }
  std::vector<std::filesystem::path> truth;
  if (options.truth) truth = collect_inputs({*options.truth});
  return std::make_unique<FileSource>(collect_inputs(options.inputs), truth, size, attributes);
}

/// A recording is never mixed with another: neither the frames nor their camera.json would be right.
void expect_no_recording(const std::filesystem::path& folder) {
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    const std::string name = entry.path().filename().string();
    if (name != kCameraFile && !(name.starts_with(kCameraFramePrefix) && name.ends_with(".png")))
      continue;
    fail_run(entry.path().string() + ": belongs to another recording; expected a folder without one");
  }
}

void write_camera_frames(CameraSource& source, const std::filesystem::path& folder,
                         const std::filesystem::path& truth) {
  expect_no_recording(folder);
  expect_no_recording(truth);
  make_folder(truth);
  Progress progress(source.count());
  std::string camera;
  for (std::size_t i = 0; i < source.count(); ++i) {
    SourceFrame made = source.load(i);
    if (i == 0) camera = camera_json(made.frame);
    const std::string name = camera_frame_stem(i) + ".png";
    write_whole(folder / name, encode_png(FrameImage(std::move(made.frame)).image));
    write_whole(truth / name, encode_png(*made.truth));
    progress.show(i + 1);
  }
  write_whole(folder / kCameraFile, Bytes(camera.begin(), camera.end()));
}

}  // namespace

void list_command(const std::optional<std::string>& plugin_file, bool json, std::ostream& out) {
  const Plugin plugin = open_plugin(plugin_file);
  const std::vector<std::string> names = plugin.names();
  auto filters = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto filter = plugin.create(static_cast<std::int32_t>(i));
    const auto schema = filter ? schema_of(*filter) : std::vector<SchemaParameter>{};
    if (json) {
      filters.push_back({{"index", i},
                         {"name", names[i]},
                         {"available", filter.has_value()},
                         {"parameters", json_parameters(schema)}});
    } else {
      out << i << "  " << names[i] << (filter ? "" : "  (not available)") << '\n';
      print_parameters(schema, out);
    }
  }
  if (json) out << filters.dump(2) << '\n';
}

void schema_command(const std::optional<std::string>& plugin, const std::string& filter,
                    std::ostream& out) {
  out << open_plugin(plugin).create(filter).schema();
}

void run_command(const std::optional<std::string>& plugin_file, const RunOptions& options,
                 std::ostream& out, std::ostream& notes) {
  const FrameAttributes attributes = frame_attributes(options);
  const OutputSettings settings = output_settings(options);
  const Plugin plugin = open_plugin(plugin_file);
  std::vector<ChainLink> links;
  for (const std::string& text : options.filters) links.push_back(make_link(plugin, text, notes));
  const std::unique_ptr<FrameSource> source = open_source(options, attributes);
  const std::vector<OutputFiles> outputs = plan_outputs(*source, settings);
  if (source->reads_files()) note_nominal_camera(links, attributes, notes);

  std::vector<Filter> chain;
  for (ChainLink& link : links) {
    if (link.values) link.filter.configure(*link.values);
    chain.push_back(std::move(link.filter));
  }
  print_results(run_chain(chain, *source, outputs, options.frame_set), out);
}

void camera_command(const CameraCommandOptions& options, std::ostream& out) {
  if (options.output.empty()) fail_usage("the folder for the frames has no name");
  const CameraRequest request = make_camera_request(options.settings);
  const std::filesystem::path folder = options.output, truth = folder / "truth";
  CameraSource source(request, {});
  write_camera_frames(source, folder, truth);
  out << source.count() << (source.count() == 1 ? " frame" : " frames") << " of " << request.config.width
      << 'x' << request.config.height << " and camera.json in " << folder.string() << ", true depth in "
      << truth.string() << '\n';
}

}  // namespace zvfilter
