#include "kit/tuner/answers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "kit/filter/filter_behaviour.h"
#include "kit/frame/depth_reader.h"
#include "kit/frame/frame_colors.h"
#include "kit/image/color_map.h"
#include "kit/texts/presets.h"

namespace kit::tuner {

namespace {

std::vector<std::string> read_names(const JsonObject& object, const std::string& field) {
  const Json& names = object.find(field, "an array of texts");
  std::vector<std::string> texts;
  if (!names.is_array()) object.fail_field(field, concat("is ", shown(names), "; expected an array"));
  for (const Json& name : names) {
    if (!name.is_string()) object.fail_field(field, "expected texts");
    texts.push_back(name.get<std::string>());
  }
  return texts;
}

/// The colours of a map at 256 even steps.
std::string colors_text(const std::function<Rgb(double)>& color) {
  std::string text;
  for (int i = 0; i < 256; ++i) text += hex_text(color(i / 255.0));
  return text;
}

Json describe_colors() {
  Json maps = Json::array();
  for (const std::string_view name : kColorMapNames) {
    const ColorMap map = *color_map_named(name);
    maps.push_back({{"name", name},
                    {"colors", colors_text([&](double value) { return color_of(map, value); })},
                    {"hole", hex_text(hole_color(map))}});
  }
  const HoleColors holes;
  return {{"maps", std::move(maps)},
          {"difference",
           {{"colors", colors_text([](double value) { return signed_color(2 * value - 1); })},
            {"filled", hex_text(holes.filled)},
            {"removed", hex_text(holes.removed)},
            {"hole", hex_text(holes.hole)}}}};
}

/// The filters with what the schemas don't say: values that a filter refuses, and those that follow from the frames' size.
Json describe_filters(const FilterLibrary& library, const Frame& frame) {
  const std::vector<FilterDescription> filters = library.describe();
  Json list = Json::parse(to_json(filters));
  for (std::size_t i = 0; i < filters.size(); ++i) {
    const auto derived = derived_values(filters[i].name, Values{}, frame.width, frame.height);
    for (std::size_t k = 0; k < filters[i].parameters.size(); ++k) {
      const SchemaParameter& parameter = filters[i].parameters[k];
      Json& json = list[i]["parameters"][k];
      const ValueRange range = value_range(filters[i].name, parameter);
      if (parse_number(parameter.min) != range.min) json["min"] = range.min;
      json["derived"] = derived && derived->contains(parameter.name);
    }
  }
  return list;
}

Json describe_sequence(FrameCache& frames, const Settings& settings) {
  const auto first = frames.frame(0);
  const DepthRange range = depth_range({first->frame}).value_or(DepthRange{0, 1000});
  Json labels = Json::array();
  for (std::size_t i = 0; i < frames.size(); ++i) labels.push_back(frames.name(i).label);
  return {{"name", settings.input},
          {"labels", std::move(labels)},
          {"width", first->frame.width},
          {"height", first->frame.height},
          {"pixelType", pixel_type_name(first->frame.pixel_type)},
          {"intrinsics", settings.intrinsics},
          {"truth", first->truth.has_value()},
          {"near", range.near},
          {"far", range.far}};
}

/// A name for what the pixel values of such frames mean.
std::string table_name(const FrameView& frame) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&frame.disparity);
  std::uint64_t hash = 14695981039346656037u;
  for (std::size_t i = 0; i < sizeof frame.disparity; ++i) hash = (hash ^ bytes[i]) * 1099511628211u;
  if (frame.pixel_type != ZV_PIXEL_TYPE_DISPARITY) hash = 0;
  return concat(frame.pixel_type, ' ', frame.format, ' ', frame.value_scale, ' ', frame.correction, ' ',
                hash);
}

std::vector<float> make_table(const FrameView& frame) {
  const DepthReader reader(frame);
  std::vector<float> table(kSampleValues);
  for (std::size_t raw = 0; raw < kSampleValues; ++raw)
    table[raw] = static_cast<float>(reader.millimetres(static_cast<std::uint16_t>(raw)));
  return table;
}

Json intrinsics_json(const ZVCameraIntrinsic& camera) {
  if (camera.fx == 0 || camera.fy == 0) return nullptr;
  return {{"fx", camera.fx}, {"fy", camera.fy}, {"cx", camera.cx}, {"cy", camera.cy}};
}

Json frame_json(const Frame& frame) {
  return {{"width", frame.width},
          {"height", frame.height},
          {"type", pixel_type_name(frame.pixel_type)},
          {"table", table_name(frame)},
          {"intrinsics", intrinsics_json(frame.intrinsic)}};
}

double share(std::uint64_t part, std::size_t whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

Json figures_json(const StepFigures& figures) {
  const FilterStatistics& statistics = figures.statistics;
  Json json = {{"milliseconds", statistics.milliseconds.front()},
               {"before", share(statistics.valid_before, figures.pixels_before)},
               {"after", share(statistics.valid_after, figures.pixels_after)},
               {"changed", nullptr}};
  if (statistics.changed) json["changed"] = share(*statistics.changed, figures.pixels_before);
  return json;
}

Json accuracy_json(const AccuracySummary& summary) {
  const auto number = [](const std::optional<double>& value) {
    return value ? Json(*value) : Json(nullptr);
  };
  return {{"median", number(summary.median)},
          {"p95", number(summary.percentile95)},
          {"off", number(summary.off)}};
}

/// What frames like this one are, for chains elsewhere; nothing for depth in millimetres, which all take them for.
std::optional<Input> input_to_say(const Frame& frame, const Chain& chain) {
  const bool geometry = std::any_of(chain.begin(), chain.end(), [&](const Step& step) {
    return step.enabled && uses_geometry(step.filter, frame.pixel_type);
  });
  if (!geometry && frame.pixel_type == ZV_PIXEL_TYPE_DEPTH && frame.value_scale == 1.0f)
    return std::nullopt;
  Input input{frame, true, true};
  input.traits.pixels.clear();
  return input;
}

std::string python_text(const Chain& chain, const SourceFrame& first, const FrameName& name) {
  const auto input = input_to_say(first.frame, chain);
  std::string text = chain_json({"", std::nullopt, chain});
  if (input) {
    Json json = Json::parse(text);
    json["input"] = input_json(*input, false);
    text = json.dump(2) + '\n';
  }
  const std::string frame = name.files.empty() ? "disparity_0000.png" : name.files.front().string();
  return concat("import zvfilter\n\nchain = zvfilter.Chain.parse(\"\"\"", text,
                "\"\"\")\nfiltered = chain(zvfilter.read(", Json(frame).dump(), "))\n");
}

/// Bytes after each other, and what they are.
class Parts {
 public:
  template <typename Number>
  void add(const std::string& name, std::span<const Number> numbers) {
    static_assert(std::endian::native == std::endian::little);
    list_.push_back({{"name", name}, {"bytes", numbers.size_bytes()}});
    bytes_.append(reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes());
    bytes_.resize((bytes_.size() + 3) / 4 * 4);
  }

  std::string after(Json header) && {
    header["parts"] = std::move(list_);
    std::string text = header.dump();
    text.resize((text.size() + 3) / 4 * 4, ' ');
    const auto length = static_cast<std::uint32_t>(text.size());
    text.insert(0, reinterpret_cast<const char*>(&length), sizeof length);
    return text += bytes_;
  }

 private:
  Json list_ = Json::array();
  std::string bytes_;
};

}  // namespace

Json steps_json(const Chain& chain) {
  return Json::parse(chain_json({"", std::nullopt, chain}))["steps"];
}

Chain read_steps(const JsonObject& object) {
  const Json& steps = object.find("chain", "an array of steps");
  return parse_chain(Json{{"version", 1}, {"steps", steps}}.dump(), "the chain").steps;
}

FrameRequest parse_frame_request(std::string_view text, std::size_t frames) {
  const std::string label = "the request";
  const Json json = parse_json_object(text, label);
  const JsonObject object(json, label + ": ");
  object.expect_no_other({"client", "number", "frame", "chain", "names", "input", "accuracy", "tables"});
  FrameRequest request;
  request.client = object.text("client");
  request.number = object.number<std::uint64_t>("number");
  request.frame = object.number<std::uint32_t>("frame");
  if (request.frame >= frames)
    object.fail_field("frame", concat("is ", request.frame, "; there are frames 0 to ", frames - 1));
  request.chain = {read_steps(object), read_names(object, "names")};
  std::vector<std::string> sorted = request.chain.names;
  std::sort(sorted.begin(), sorted.end());
  if (sorted.size() != request.chain.steps.size() ||
      std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
    object.fail_field("names", "expected a name for each step, no two the same");
  request.input = object.flag("input");
  request.accuracy = object.flag("accuracy");
  request.tables = read_names(object, "tables");
  return request;
}

Chain parse_chain_request(std::string_view text) {
  const std::string label = "the request";
  const Json json = parse_json_object(text, label);
  const JsonObject object(json, label + ": ");
  object.expect_no_other({"chain"});
  return read_steps(object);
}

std::string describe(const FilterLibrary& library, const Settings& settings, FrameCache& frames) {
  Json list = Json::array();
  for (const Preset& preset : presets()) {
    const ChainFile file = parse_chain(preset.chain, concat("preset ", preset.name));
    list.push_back(
        {{"name", preset.name}, {"description", file.description}, {"chain", steps_json(file.steps)}});
  }
  return Json{{"filters", describe_filters(library, frames.frame(0)->frame)},
              {"presets", std::move(list)},
              {"colors", describe_colors()},
              {"sequence", describe_sequence(frames, settings)},
              {"chain", steps_json(settings.chain.steps)},
              {"chainFile", settings.chain_file.string()},
              {"points", settings.points}}
      .dump();
}

std::string encode(const ShownFrame& shown, const FrameRequest& request, const Session& session) {
  const Frame &before = shown.input->frame, &after = shown.result;
  Json steps = Json::array();
  for (const auto& step : shown.steps) steps.push_back(step ? figures_json(*step) : Json(nullptr));
  Json header = {{"frame", shown.index},
                 {"first", shown.first},
                 {"restarted", shown.restarted},
                 {"before", frame_json(before)},
                 {"after", frame_json(after)},
                 {"steps", std::move(steps)},
                 {"whole", figures_json(shown.whole)}};
  if (request.accuracy) {
    const auto accuracy = session.accuracy();
    if (accuracy) header["accuracy"] = {accuracy_json(accuracy->first), accuracy_json(accuracy->second)};
  }
  Parts parts;
  if (request.input) parts.add("before", std::span<const std::uint16_t>(before.pixels));
  parts.add("after", std::span<const std::uint16_t>(after.pixels));
  std::vector<std::string> known = request.tables;
  for (const Frame* frame : {&before, &after}) {
    const std::string name = table_name(*frame);
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    known.push_back(name);
    parts.add("table " + name, std::span<const float>(make_table(*frame)));
  }
  return std::move(parts).after(std::move(header));
}

std::string chain_texts(const Chain& chain, const Settings& settings, FrameCache& frames) {
  std::vector<std::string> steps;
  for (const Step& step : chain) {
    if (step.enabled) steps.push_back(step_text(step));
  }
  return Json{{"file", chain_json({settings.chain.description, settings.chain.input, chain})},
              {"command", settings.command(join(steps, "; "))},
              {"python", python_text(chain, *frames.frame(0), frames.name(0))}}
      .dump();
}

}  // namespace kit::tuner
