#ifndef ZVFILTER_OPTIONS_H
#define ZVFILTER_OPTIONS_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kit/frame/frame_attributes.h"
#include "kit/pipeline/camera_options.h"
#include "kit/pipeline/pipeline.h"
#include "outputs.h"

namespace CLI {
class App;
}

namespace zvfilter {

struct RunOptions {
  kit::Chain chain;
  std::vector<std::string> inputs;
  std::optional<kit::CameraRequest> camera_input;  ///< what the input asks of the virtual camera
  std::optional<std::string> truth;
  std::optional<kit::Size> size;  ///< of raw files
  kit::FrameAttributes attributes;
  kit::Handover handover = kit::Handover::frame;
  OutputSettings output;
};

struct CameraCommandOptions {
  std::vector<kit::CameraSetting> settings;
  std::filesystem::path output;
  bool sync = false;  ///< each file, not only camera.json
};

/// The options of the commands `run` and `camera`, which fill the structures as they are parsed.
void describe_run(CLI::App& command, RunOptions& run);
void describe_camera(CLI::App& command, CameraCommandOptions& camera);

}  // namespace zvfilter

#endif
