#ifndef FILTERPROCESSOR_FILTERS_DISPARITY_FILTER_H
#define FILTERPROCESSOR_FILTERS_DISPARITY_FILTER_H

#include <atomic>
#include <memory>
#include <mutex>

#include "framework/priv_filter.h"
#include "framework/profile_cache.h"

namespace filterprocessor {

class ConfigValues;
class DepthConverter;
enum class CodeLayout;
class FrameProcess;

/// What the two filters that turn disparity into depth share: the conversion state, the decision when the
/// table is rebuilt, the profile cache and the three parameters that both have. The table follows the
/// parameters of the cached profile, the frame's disparity correction and the configuration.
class FILTERPROCESSOR_API DisparityFilter : public IPrivFilter {
 public:
  zv_frame_t* filter_process(const zv_frame_t* frame, zv_error** error) final;
  /// Drops the table only.
  void reset_filter(zv_error** error) final;
  void print_key_params() final;

 protected:
  DisparityFilter(std::uint32_t initial_max_depth, std::uint32_t initial_min_depth);
  ~DisparityFilter();

  /// True when a rebuild is due; `params` is then stored and what follows from the limits recomputed.
  bool check_d2d_params_changed(ZVDisparityParam params);
  /// Rebuilds the table from the stored parameters. A rule's error is stored in `*error`, which must not
  /// be null; the table is then all zero. Without memory there is no table.
  void calculate_d2d_lookup_table(zv_error** error);

  /// Converts the depth frame to what the caller gets. Called with the lock held.
  virtual FrameHandle convert(FrameProcess& host, std::int32_t format) = 0;
  /// Fills a table of `lutSize` entries by the filter's rule and makes it the current one.
  virtual void init_lookup_table(zv_error** error) = 0;

  /// The lock that a frame holds from the look at the parameters on.
  std::unique_lock<std::recursive_mutex> hold() { return std::unique_lock(lock_); }

  /// Takes max_depth, min_depth and depth_uint from the first three values, or silently ignores them.
  void update_depth_limits(const ConfigValues& values);

  /// Makes the table of the stereo rule with the stored parameters the current one; see StereoRule for
  /// the arguments.
  void use_stereo_rule(CodeLayout layout, double scale, double disparity_end, double depth_end);
  /// The same for the mono rule; false for an unknown pack mode.
  bool use_mono_rule();

  /// Converts every pixel. `packed`: the code stands in the high 12 bits and the low 4 are carried
  /// through.
  FrameHandle convert_at_same_size(FrameProcess& host, bool packed);
  /// Rebuilds the table for the frame's available bit size if the stored one differs.
  void match_bit_size(FrameProcess& host, std::uint8_t available_bits);
  /// The current table, if there is one; there is inside convert().
  DepthConverter* d2d_lut() const { return d2dLut; }
  /// Makes code 0 stand for depth 0 until the next rebuild. Kept tables stay as they are.
  /// @return false without memory, with nothing changed
  bool clear_first_entry();
  /// Describes a converted frame: bit size and value scale.
  void set_depth_attributes(FrameProcess& host, zv_frame_t* output) const;

  const ZVDisparityParam& last_params() const { return lastParams; }
  const zv_stream_profile_t* cached_profile() const { return cachedProfile.get(); }

 private:
  /// What enters a table, and the tables that are kept.
  struct TableKey;
  struct Tables;
  struct FreeTables {
    void operator()(Tables* tables) const;
  };

  void update_profile_cache(FrameProcess& host);
  void rebuild(FrameProcess& host);
  template <typename Rule>
  void use_table(const Rule& rule, const TableKey& key);

  std::recursive_mutex lock_;  // guards what follows down to tables_
  std::uint32_t max_depth;
  std::uint32_t min_depth;
  float depth_uint = 1.0f;
  float inverseDepthUnit = 1.0f;
  bool paramsDirty = false;
  std::uint32_t outputBitSize = 0;
  std::uint32_t lutSize = 0;
  DepthConverter* d2dLut = nullptr;  // one of the kept tables
  ZVDisparityParam lastParams = {};

  std::unique_ptr<Tables, FreeTables> tables_;

  std::atomic<float> metadataDispOffset = 0.0f;  // written before the lock is taken
  ProfileCache cachedProfile;                    // used by the processing thread alone
  std::uint8_t cachedBitSize = 0;
};

}  // namespace filterprocessor

#endif
