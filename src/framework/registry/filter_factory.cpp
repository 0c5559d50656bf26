#include "framework/registry/filter_factory.h"

#include <new>

#include "filters/depth_resize.h"
#include "filters/disparity_transform.h"
#include "filters/edge_noise_removal_filter.h"
#include "filters/hardware_d2d_correction_filter.h"
#include "filters/hole_filling_filter.h"
#include "filters/noise_removal_filter.h"
#include "filters/open_ni_disparity_transform.h"
#include "filters/spatial_advanced_filter.h"
#include "filters/temporal_filter.h"
#include "framework/registry/make_filter.h"

namespace filterprocessor {

namespace {

template <typename Filter>
std::shared_ptr<IPrivFilter> create() {
  return make_filter<Filter>();
}

}  // namespace

constinit FilterFactory::Instance FilterFactory::instance_;
constinit std::mutex FilterFactory::instanceMutex_;

FilterFactory::FilterFactory()
    : entries_{{{"DisparityTransform", create<DisparityTransform>},
                {"HoleFillingFilter", create<HoleFillingFilter>},
                {"NoiseRemovalFilter", create<NoiseRemovalFilter>},
                {"SpatialAdvancedFilter", create<SpatialAdvancedFilter>},
                {"TemporalFilter", create<TemporalFilter>},
                {"DepthResize", create<DepthResize>},
                {"EdgeNoiseRemovalFilter", create<EdgeNoiseRemovalFilter>},
                {"HardwareD2DCorrectionFilter", create<HardwareD2DCorrectionFilter>},
                {"OpenNIDisparityTransform", create<OpenNIDisparityTransform>}}} {}

std::shared_ptr<FilterFactory> FilterFactory::getInstance() {
  const std::lock_guard lock(instanceMutex_);
  if (!instance_.pointer) {
    // In the library's own memory: there is always enough of it.
    alignas(FilterFactory) static unsigned char memory[sizeof(FilterFactory)];
    instance_.pointer = {std::shared_ptr<void>(), new (memory) FilterFactory};
  }
  return instance_.pointer;
}

std::int32_t FilterFactory::getFilterCount() const { return static_cast<std::int32_t>(entries_.size()); }

const FilterFactory::Entry* FilterFactory::find(std::int32_t index) const {
  const auto position = static_cast<std::uint32_t>(index);  // a negative index is past the end
  return position < entries_.size() ? &entries_[position] : nullptr;
}

const char* FilterFactory::getFilterName(std::int32_t index) const {
  const Entry* entry = find(index);
  return entry != nullptr ? entry->name : "UnknownFilter";
}

std::shared_ptr<IPrivFilter> FilterFactory::createFilter(std::int32_t index) const {
  const Entry* entry = find(index);
  return entry != nullptr ? entry->create() : nullptr;
}

}  // namespace filterprocessor
