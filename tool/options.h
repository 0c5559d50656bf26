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
  std::optional<std::string> truth;
  std::optional<std::string> camera;  ///< a camera.json
  std::optional<kit::Size> size;      ///< of raw files
  kit::FrameAttributes attributes;    ///< without the camera
  kit::Handover handover = kit::Handover::frame;
  OutputSettings output;
};

struct CameraCommandOptions {
  std::vector<kit::CameraSetting> settings;
  std::filesystem::path output;
};

/// The options of the commands `run` and `camera`, which fill the structures as they are parsed.
void describe_run(CLI::App& command, RunOptions& run);
void describe_camera(CLI::App& command, CameraCommandOptions& camera);

}  // namespace zvfilter

#endif
