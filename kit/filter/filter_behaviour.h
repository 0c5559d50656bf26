#ifndef KIT_FILTER_FILTER_BEHAVIOUR_H
#define KIT_FILTER_FILTER_BEHAVIOUR_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame_traits.h"
#include "kit/schema/schema.h"

namespace kit {

/// Whether the filter has no parameters and takes any configuration without a word.
bool ignores_configuration(std::string_view filter);

/// Whether the filter reads the camera's geometry from a frame of this pixel type.
bool uses_geometry(std::string_view filter, int pixel_type);

/// Whether the frames that the filter has seen have a part in what it makes of the next one.
bool has_history(std::string_view filter);

/// The values that the filter takes: the schema's range, where the filter doesn't refuse a part of it.
struct ValueRange {
  double min;
  double max;
};
ValueRange value_range(std::string_view filter, const SchemaParameter& parameter);

/// Whether the filter's values decide the size of what it makes.
bool changes_size(std::string_view filter);

/// The values of a step with those that follow from the size of its frames: the target of `DepthResize`, if the step doesn't say
/// it. Nothing where nothing follows.
std::optional<std::map<std::string, std::string>> derived_values(
    std::string_view filter, const std::optional<std::map<std::string, std::string>>& values,
    std::uint32_t width, std::uint32_t height);

/// The configurations that make the filter take all of `values`, one after the other. Most filters need just that one; the
/// disparity transforms drop a new min_depth as long as max_depth and depth_uint stay the same.
std::vector<std::vector<std::string>> configurations(std::string_view filter,
                                                     const std::vector<SchemaParameter>& schema,
                                                     const std::vector<std::string>& values);

/// What a filter was at when it failed.
struct FailedCall {
  std::map<std::string, std::string> values;  ///< all of them
  const hosts::FrameTraits& frame;
};

/// The cause, or what would be right, where a filter's own error doesn't say; empty where it does.
std::string failure_hint(std::string_view filter, std::string_view message, const FailedCall& call);

}  // namespace kit

#endif
