#ifndef ZVFILTER_OPTIONS_H
#define ZVFILTER_OPTIONS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kit/chain/pipeline.h"
#include "kit/frame/frame_attributes.h"
#include "kit/image/image_files.h"
#include "kit/pipeline/camera_options.h"
#include "outputs.h"

namespace CLI {
class App;
}

namespace zvfilter {

struct ReportOptions {
  std::filesystem::path file;  ///< empty: none
  std::vector<std::size_t> frames;
  std::optional<std::filesystem::path> against;  ///< folder of another run's results
  std::string command;                           ///< that asked for the run
};

/// What becomes of results that are there before a run.
enum class Existing {
  refuse,
  overwrite,
  resume,  ///< they are kept, the others are made
};

struct RunOptions {
  kit::Chain filters;                 ///< one by one
  std::string chain;                  ///< all at once, instead: a file or a text
  std::string preset;                 ///< or a preset's name
  std::vector<std::string> settings;  ///< TAG.key=value
  std::vector<std::string> inputs;
  kit::Selection selection;                   ///< from folders
  const kit::Codec* stream_format = nullptr;  ///< of standard input; null: the output's
  bool endian_said = false;
  bool metres = false;                             ///< floating-point files hold them
  std::optional<kit::CameraRequest> camera_input;  ///< what the input asks of the virtual camera
  std::optional<std::string> truth;
  std::optional<kit::Size> size;           ///< of raw files
  std::optional<kit::Size> expected_size;  ///< of all frames, as the chain file says
  kit::FrameAttributes attributes;
  bool camera_said = false;  ///< on the command line, be it that there is none
  kit::Handover handover = kit::Handover::frame;
  OutputSettings output;
  std::size_t jobs = 0;  ///< threads; 0: one for each processor
  Existing existing = Existing::refuse;
  bool keep_going = false;  ///< after a frame that fails
  ReportOptions report;
};

struct TuneOptions {
  RunOptions run;
  int port = 0;                    ///< 0: a free one
  bool open = false;               ///< in the browser
  std::vector<std::string> words;  ///< of the command line, after the command's name
};

struct AdviseOptions {
  RunOptions run;                    ///< the frames and the chain
  std::filesystem::path output;      ///< the chain file
  std::vector<std::string> weights;  ///< NAME=VALUE
  std::string step;                  ///< whose values alone are looked for; empty: all
  std::uint64_t seed = 1;
  std::optional<std::size_t> evaluations;
  double seconds = 60;
  bool with_truth = false;  ///< of the virtual camera
};

struct CameraCommandOptions {
  std::vector<kit::CameraSetting> settings;
  std::filesystem::path output;
  bool sync = false;  ///< each file, not only camera.json
};

struct ChainConvertOptions {
  std::string source;
  std::vector<std::string> settings;  ///< TAG.key=value
  bool to_text = false;
  std::filesystem::path output;  ///< empty: standard output
};

/// The options of the commands, which fill the structures as they are parsed.
void describe_run(CLI::App& command, RunOptions& run);
void describe_bench(CLI::App& command, RunOptions& run);
void describe_tune(CLI::App& command, TuneOptions& tune);
void describe_advise(CLI::App& command, AdviseOptions& advise);
void describe_chain_convert(CLI::App& command, ChainConvertOptions& convert);
void describe_camera(CLI::App& command, CameraCommandOptions& camera);

}  // namespace zvfilter

#endif
