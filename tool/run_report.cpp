#include "run_report.h"

#include <algorithm>
#include <utility>

#include "kit/chain/chain_file.h"
#include "kit/common/error.h"
#include "kit/image/image_files.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

kit::ReportStep describe_step(const kit::Pipeline& pipeline, std::size_t index) {
  const kit::Step& step = pipeline.chain()[index];
  kit::ReportStep described{step.filter, step.tag, step.enabled, {}};
  for (const kit::SchemaParameter& parameter : pipeline.parameters(index)) {
    const bool given = step.values && step.values->contains(parameter.name);
    const std::string value = given ? step.values->at(parameter.name) : parameter.default_value;
    described.parameters.push_back({parameter.name, value, value == parameter.default_value});
  }
  return described;
}

kit::ReportSettings describe_run(const RunOptions& options, const kit::Pipeline& pipeline,
                                 std::size_t frames, std::vector<kit::ReportTable> tables) {
  kit::ReportSettings settings;
  settings.tables = std::move(tables);
  settings.input = kit::join(options.inputs, " ");
  settings.command = options.report.command;
  settings.chain_file = kit::chain_json({"", options.attributes.camera, pipeline.chain()});
  for (std::size_t i = 0; i < pipeline.chain().size(); ++i)
    settings.steps.push_back(describe_step(pipeline, i));
  settings.frames = options.report.frames;
  if (!options.keep_going && frames > 0) settings.last = frames - 1;
  if (options.report.against) settings.against = options.report.against->string();
  return settings;
}

bool is_same(const fs::path& a, const fs::path& b) {
  std::error_code missing;
  return fs::equivalent(a, b, missing) && !missing;
}

fs::path result_of(const std::string& stem, const std::vector<fs::path>& results,
                   const fs::path& folder) {
  const auto found = std::find_if(results.begin(), results.end(),
                                  [&](const fs::path& file) { return file.stem() == stem; });
  if (found == results.end()) kit::refuse(folder.string(), ": has no result named ", stem);
  return *found;
}

}  // namespace

RunReport::RunReport(const RunOptions& options, const kit::Pipeline& pipeline,
                     const kit::FrameSource& source, std::vector<kit::ReportTable> tables)
    : file_(options.report.file),
      report_(describe_run(options, pipeline, source.names.size(), std::move(tables))),
      names_(source.names) {
  for (const std::size_t index : options.report.frames) {
    if (index >= names_.size())
      kit::refuse("--report-frames ", index, ": expected numbers from 0 to ", names_.size() - 1);
  }
  for (const kit::FrameName& name : names_) {
    for (const fs::path& input : name.files) {
      if (is_same(input, file_)) kit::refuse(file_.string(), " would replace the input ", input.string());
    }
  }
  if (!options.report.against) return;
  const fs::path& folder = *options.report.against;
  if (is_same(folder, options.output.folder))
    kit::refuse("--against ", folder.string(), ": is the folder for the results");
  kit::Selection any_format;
  any_format.one_format = false;
  const std::vector<fs::path> results = kit::collect_images({folder.string()}, any_format);
  for (const kit::FrameName& name : names_) others_.push_back(result_of(name.stem, results, folder));
}

void RunReport::add(const kit::Passage& passage, const kit::AccuracySummary& accuracy) {
  stages_.push_back({passage.number, passage.frame, passage.milliseconds, accuracy});
}

void RunReport::end_frame(std::size_t index, const kit::SourceFrame& input) {
  const kit::FrameView& result = stages_.back().frame;
  std::optional<kit::Image> other;
  if (!others_.empty()) other = kit::read_image(others_[index], {result.width, result.height});
  report_.add_frame(index, names_[index].label, stages_, input.truth ? &*input.truth : nullptr,
                    other ? &*other : nullptr);
  stages_.clear();
}

void RunReport::write(const kit::ChainResults& results) {
  std::vector<kit::AccuracySummary> accuracy;
  for (const kit::Accuracy& stage : results.accuracy) accuracy.push_back(stage.summary());
  report_.set_accuracy(std::move(accuracy));
  const std::string page = report_.html();
  if (file_.has_parent_path()) kit::make_folder(file_.parent_path());
  kit::write_text(file_, page, kit::Durability::synced);
}

std::string command_text(const std::vector<std::string>& words) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_=:,./+@%";
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) {
      text += word;
      continue;
    }
    text += '\'';
    for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    text += '\'';
  }
  return text;
}

}  // namespace zvfilter
