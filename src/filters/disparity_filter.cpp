#include "filters/disparity_filter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <optional>

#include "filters/depth_converter.h"
#include "framework/config_values.h"
#include "framework/frame_info.h"
#include "framework/frame_process.h"
#include "framework/printed.h"

namespace filterprocessor {

namespace {

bool equal(const ZVDisparityParam& a, const ZVDisparityParam& b) {
  return a.zpd == b.zpd && a.zpps == b.zpps && a.baseline == b.baseline && a.fx == b.fx &&
         a.bitSize == b.bitSize && a.unit == b.unit && a.minDisparity == b.minDisparity &&
         a.packMode == b.packMode && a.dispOffset == b.dispOffset && a.invalidDisp == b.invalidDisp &&
         a.dispIntPlace == b.dispIntPlace && a.isDualCamera == b.isDualCamera;
}

std::uint32_t bits_for(float largest_depth) {
  std::uint32_t bits = 8;
  while (bits < 16 && !(largest_depth < static_cast<float>(1u << bits))) ++bits;
  return bits;
}

}  // namespace

/// Compared bit by bit.
struct DisparityFilter::TableKey {
  ZVDisparityParam params = {};
  std::uint32_t max_depth = 0;
  std::uint32_t min_depth = 0;
  float inverse_depth_unit = 0;
  float metadata_offset = 0;
  double scale = 0;
  double disparity_end = 0;
  double depth_end = 0;

  bool same_bits(const TableKey& other) const {
    const auto bits = [](const auto& a, const auto& b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    return bits(params, other.params) && max_depth == other.max_depth && min_depth == other.min_depth &&
           bits(inverse_depth_unit, other.inverse_depth_unit) &&
           bits(metadata_offset, other.metadata_offset) && bits(scale, other.scale) &&
           bits(disparity_end, other.disparity_end) && bits(depth_end, other.depth_end);
  }
};

/// A frame whose bit size differs from its profile's rebuilds twice, so the last few tables are kept.
struct DisparityFilter::Tables {
  struct Kept {
    TableKey key;
    DepthConverter table;
  };

  Kept kept[3];
  std::size_t next = 0;
  DepthConverter changed;  // all zero after a failed rule, or a kept one with its first entry cleared
};

void DisparityFilter::FreeTables::operator()(Tables* tables) const {
  std::destroy_at(tables);
  std::free(tables);
}

DisparityFilter::DisparityFilter(std::uint32_t initial_max_depth, std::uint32_t initial_min_depth)
    : max_depth(initial_max_depth), min_depth(initial_min_depth) {}

DisparityFilter::~DisparityFilter() = default;

void DisparityFilter::update_depth_limits(const ConfigValues& values) {
  const std::int32_t max = values.integer(0);
  const std::int32_t min = values.integer(1);
  const auto unit = static_cast<float>(values.number(2));
  const auto is_depth = [](std::int32_t depth) { return depth >= 1 && depth <= 65535; };
  if (!is_depth(max) || !is_depth(min) || !(unit <= 10.0f) || !(double{unit} >= 0.001)) return;
  const std::lock_guard lock(lock_);
  // A change of min_depth alone is dropped.
  if (static_cast<std::uint32_t>(max) == max_depth && unit == depth_uint) return;
  max_depth = static_cast<std::uint32_t>(max);
  min_depth = static_cast<std::uint32_t>(min);
  depth_uint = unit;
  paramsDirty = true;
}

bool DisparityFilter::check_d2d_params_changed(ZVDisparityParam params) {
  if (equal(params, lastParams) && !paramsDirty) return false;
  inverseDepthUnit = 1.0f / depth_uint;
  outputBitSize = bits_for(inverseDepthUnit * static_cast<float>(max_depth));
  lastParams = params;
  paramsDirty = false;
  return true;
}

void DisparityFilter::calculate_d2d_lookup_table(zv_error** error) {
  // Codes are 16 bits, so a longer table would never be read past that.
  lutSize = 1u << std::min<unsigned>(lastParams.bitSize, 16);
  d2dLut = nullptr;
  if (!tables_) {
    void* const memory = std::malloc(sizeof(Tables));
    if (memory == nullptr) return;
    tables_.reset(new (memory) Tables);
  }
  init_lookup_table(error);
  if (d2dLut == nullptr) {
    tables_->changed = DepthConverter(lutSize);
    d2dLut = &tables_->changed;
  }
  if (!d2dLut->has_table()) d2dLut = nullptr;
}

void DisparityFilter::rebuild(FrameProcess& host) {
  calculate_d2d_lookup_table(host.slot());
  host.test();
  if (d2dLut == nullptr) host.fail_without_memory();
}

template <typename Rule>
void DisparityFilter::use_table(const Rule& rule, const TableKey& key) {
  for (Tables::Kept& kept : tables_->kept) {
    if (kept.table.has_table() && kept.key.same_bits(key)) {
      d2dLut = &kept.table;
      return;
    }
  }
  Tables::Kept& next = tables_->kept[tables_->next];
  next = {key, DepthConverter(rule, lutSize)};
  d2dLut = &next.table;
  tables_->next = (tables_->next + 1) % std::size(tables_->kept);
}

void DisparityFilter::use_stereo_rule(CodeLayout layout, double scale, double disparity_end,
                                      double depth_end) {
  const float offset = metadataDispOffset;
  const StereoRule rule = {
      .layout = layout,
      .scale = scale,
      .focal_baseline = focal_baseline(lastParams),
      .unit = double{lastParams.unit * inverseDepthUnit},
      .disparity_offset = double{lastParams.dispOffset},
      .metadata_offset = double{offset},
      .min_disparity = double{lastParams.minDisparity},
      .disparity_end = disparity_end,
      .invalid_disparity = static_cast<double>(lastParams.invalidDisp),
      .limits = {double{inverseDepthUnit * static_cast<float>(min_depth)},
                 double{inverseDepthUnit * static_cast<float>(max_depth)}, depth_end}};
  use_table(rule, {lastParams, max_depth, min_depth, inverseDepthUnit, offset, scale, disparity_end,
                   depth_end});
}

bool DisparityFilter::use_mono_rule() {
  const double scale = std::ldexp(1.0, lastParams.bitSize - 8);
  const double slope = lastParams.zpd / focal_baseline(lastParams);
  const double numerator = lastParams.zpd * (double{lastParams.unit} * double{inverseDepthUnit});
  CodeLayout layout = CodeLayout::linear;
  switch (lastParams.packMode) {
    case 1:
      layout = CodeLayout::inverted;
      break;
    case 2:
      layout = CodeLayout::signed_14_bit;
      break;
    case 4:
      break;
    default:
      return false;
  }
  const MonoRule rule = {.layout = layout,
                         .scale = scale,
                         .numerator = numerator,
                         .slope = slope,
                         .disparity_offset = double{lastParams.dispOffset},
                         .limits = {double{inverseDepthUnit * static_cast<float>(min_depth)},
                                    double{inverseDepthUnit * static_cast<float>(max_depth)}, 65536.0}};
  use_table(rule, {lastParams, max_depth, min_depth, inverseDepthUnit, 0.0f, scale, 0.0, 65536.0});
  return true;
}

void DisparityFilter::update_profile_cache(FrameProcess& host) {
  const auto available_bits = [&] {
    return host.call(zv_video_frame_get_pixel_available_bit_size, host.depth());
  };
  std::uint8_t bits = 0;
  if (!cachedProfile) {
    cachedProfile.fetch(host);
    bits = available_bits();
  } else {
    const bool fits = cachedProfile.fits(host);
    bits = available_bits();
    if (fits && bits == cachedBitSize) return;
    cachedProfile.fetch(host);
  }
  if (!host.failed()) cachedBitSize = bits;
}

zv_frame_t* DisparityFilter::filter_process(const zv_frame_t* frame, zv_error** error) {
  return process_frame(frame, error, [this](FrameProcess& host) -> FrameHandle {
    const zv_frame_t* depth = host.depth();
    const std::int32_t format = host.call(zv_frame_get_format, depth);
    if (host.call(zv_video_frame_get_pixel_type, depth) != ZV_PIXEL_TYPE_DISPARITY)
      return host.deliver_copy();
    update_profile_cache(host);
    const ZVDisparityParam params = host.disparity_params(cachedProfile.get());
    const std::optional<std::int64_t> correction = host.disparity_correction(depth);
    if (host.failed()) return nullptr;
    metadataDispOffset = static_cast<float>(correction.value_or(0));

    const std::lock_guard lock(lock_);
    // A reset drops the table and leaves the parameters, so a missing table is rebuilt without a change.
    if (check_d2d_params_changed(params) || d2dLut == nullptr) rebuild(host);
    return host.failed() ? nullptr : convert(host, format);
  });
}

FrameHandle DisparityFilter::convert_at_same_size(FrameProcess& host, bool packed) {
  const zv_frame_t* depth = host.depth();
  const std::uint32_t count = host.call(zv_frame_get_data_size, depth) / 2;
  const std::uint8_t bits = host.call(zv_video_frame_get_pixel_available_bit_size, depth);
  FrameHandle output = host.create_like(depth, false);
  host.call(zv_video_frame_set_pixel_type, output.get(), std::int32_t{ZV_PIXEL_TYPE_DEPTH});
  const std::uint16_t* source = host.described_pixels(depth, count);
  std::uint16_t* target = host.pixels(output.get(), count, 1);
  match_bit_size(host, bits);
  if (host.failed()) return nullptr;
  if (packed) {
    d2dLut->convert_packed(source, target, count);
  } else {
    d2dLut->convert(source, target, count);
  }
  set_depth_attributes(host, output.get());
  return host.deliver(std::move(output));
}

void DisparityFilter::match_bit_size(FrameProcess& host, std::uint8_t available_bits) {
  if (host.failed() || available_bits == lastParams.bitSize) return;
  lastParams.bitSize = available_bits;
  rebuild(host);
}

bool DisparityFilter::clear_first_entry() {
  if (d2dLut->entries()[0] == 0) return true;
  DepthConverter cleared = d2dLut->with_first_entry_cleared();
  if (!cleared.has_table()) return false;
  tables_->changed = std::move(cleared);
  d2dLut = &tables_->changed;
  return true;
}

void DisparityFilter::set_depth_attributes(FrameProcess& host, zv_frame_t* output) const {
  host.call(zv_video_frame_set_pixel_available_bit_size, output,
            static_cast<std::uint8_t>(outputBitSize));
  host.call(zv_depth_frame_set_value_scale, output, 1.0f / inverseDepthUnit);
}

void DisparityFilter::reset_filter(zv_error**) {
  const std::lock_guard lock(lock_);
  d2dLut = nullptr;
  tables_.reset();
}

void DisparityFilter::print_key_params() {
  // The three single bytes go out as raw characters: readers of this print know them so.
  const ZVDisparityParam p = [this] {
    const std::lock_guard lock(lock_);
    return lastParams;
  }();
  const auto raw = [](std::uint8_t byte) { return static_cast<char>(byte); };
  Printed() << "d2dParameters: \n"
            << "baseline:      " << float{p.baseline} << '\n'
            << "bitSize:       " << raw(p.bitSize) << '\n'
            << "dispIntPlace:  " << std::int32_t{p.dispIntPlace} << '\n'
            << "dispOffset:    " << float{p.dispOffset} << '\n'
            << "fx:            " << double{p.fx} << '\n'
            << "invalidDisp:   " << std::int32_t{p.invalidDisp} << '\n'
            << "isDualCamera:  " << raw(p.isDualCamera) << '\n'
            << "minDisparity:  " << float{p.minDisparity} << '\n'
            << "packMode:      " << raw(p.packMode) << '\n'
            << "unit:          " << float{p.unit} << '\n'
            << "zpd:           " << double{p.zpd} << '\n'
            << "zpps:          " << double{p.zpps} << '\n';
}

}  // namespace filterprocessor
