#include "run_record.h"

#include "kit/chain/chain_file.h"
#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/json/json.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostBytes = 64 << 20;  // more than a command line has names for

std::string input_name(const RunOptions& options, const std::string& input) {
  if (options.camera_input || is_standard(input)) return input;
  std::error_code none;
  return fs::weakly_canonical(input, none).string();
}

}  // namespace

std::string run_record(const RunOptions& options, const kit::Chain& chain, const Sequence& sequence) {
  kit::Json record;
  record["chain"] = kit::Json::parse(kit::chain_json({"", std::nullopt, chain}));
  const kit::FrameAttributes& attributes = options.attributes;
  kit::Json frames = kit::input_json(kit::describe_input({}, attributes), false);
  // Of a nominal camera, or in place of the camera's own.
  if (attributes.fx) frames["fx"] = *attributes.fx;
  frames["frameSet"] = options.handover == kit::Handover::frame_set;
  if (options.size) frames["size"] = {options.size->width, options.size->height};
  record["frames"] = frames;
  for (const std::string& input : sequence.inputs) record["inputs"].push_back(input_name(options, input));
  return record.dump(2, ' ', false, kit::Json::error_handler_t::replace) + '\n';
}

void expect_same_run(const fs::path& folder, const std::string& record) {
  const fs::path file = folder / kRecordFile;
  std::error_code none;
  if (!fs::exists(file, none)) {
    kit::refuse(file.string(),
                ": is not there to say what made the results; --overwrite makes them anew");
  }
  const kit::Json found =
      kit::parse_json_object(kit::read_text(file, kMostBytes), file.string(), kMostBytes);
  const kit::Json wanted = kit::Json::parse(record);
  for (const char* const part : {"chain", "frames", "inputs"}) {
    if (found.contains(part) && found[part] == wanted[part]) continue;
    kit::refuse(file.string(), ": the results there were made with other ", part,
                "; choose another folder, or --overwrite");
  }
}

}  // namespace zvfilter
