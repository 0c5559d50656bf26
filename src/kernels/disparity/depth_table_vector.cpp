#include "kernels/disparity/depth_table.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Fills the entries of the codes begin to end - 1, as many at a time as vectors allow and the rest by
/// the plain rule. A NaN is stored as 0 by the plain rules and fails every comparison here, which is the
/// same.
template <typename Depths, typename Rule>
void fill(const Rule& rule, std::uint16_t (*plain_entry)(const Rule&, std::size_t), const Depths& depths,
          std::uint16_t* table, std::size_t begin, std::size_t end) {
  for (; begin % F64::lanes != 0 && begin < end; ++begin) table[begin] = plain_entry(rule, begin);
  for (; begin + F64::lanes <= end; begin += F64::lanes) {
    depths(F64::counting_from(static_cast<double>(begin)), table + begin);
  }
  for (; begin < end; ++begin) table[begin] = plain_entry(rule, begin);
}

struct Limits {
  explicit Limits(const DepthLimits& limits)
      : min(F64::splat(limits.min)), max(F64::splat(limits.max)), end(F64::splat(limits.end)) {}
  Mask64 hold(F64 depth) const { return (depth >= min) & (depth <= max) & (depth < end); }

  F64 min, max, end;
};

template <CodeLayout kLayout>
void fill_stereo(const StereoRule& rule, std::uint16_t* table, std::size_t size) {
  const Limits limits(rule.limits);
  const F64 per_scale =
      F64::splat(1.0 / rule.scale);  // a power of two, so the products are the quotients
  const F64 focal_baseline = F64::splat(rule.focal_baseline);
  const F64 unit = F64::splat(rule.unit);
  const auto depths = [&](F64 code, std::uint16_t* entries) {
    const F64 d = kLayout == CodeLayout::inverted
                      ? ((F64::splat(200.375) - (code + code) * per_scale) + F64::splat(128.0)) -
                            F64::splat(rule.min_disparity)
                      : code * per_scale;
    const F64 divisor = (d + F64::splat(rule.disparity_offset)) + F64::splat(rule.metadata_offset);
    const F64 z = focal_baseline / divisor * unit;
    const Mask64 invalid = abs(d - F64::splat(rule.invalid_disparity)) < F64::splat(0.0001);
    const Mask64 valid = (d < F64::splat(rule.disparity_end)) & (d > F64::splat(0.0)) & limits.hold(z);
    z.store_truncated(without(valid, invalid), entries);
  };
  fill(rule, plain::stereo_entry, depths, table, 0, smaller(size, kDisparityCodeEnd));
}

template <CodeLayout kLayout>
void fill_mono(const MonoRule& rule, std::uint16_t* table, std::size_t begin, std::size_t end,
               double origin) {
  const Limits limits(rule.limits);
  const F64 per_scale = F64::splat(1.0 / rule.scale);
  const F64 numerator = F64::splat(rule.numerator);
  const F64 slope = F64::splat(rule.slope);
  const F64 offset = F64::splat(rule.disparity_offset);
  const auto depths = [&](F64 code, std::uint16_t* entries) {
    const F64 number = code - F64::splat(origin);
    const F64 d = kLayout == CodeLayout::inverted ? F64::splat(200.375) - (number + number) * per_scale
                                                  : number * per_scale;
    const F64 z = numerator / fused_multiply_add(d + offset, slope, F64::splat(1.0));
    z.store_truncated(limits.hold(z), entries);
  };
  fill(rule, plain::mono_entry, depths, table, begin, end);
}

void build_stereo_table(const StereoRule& rule, std::uint16_t* table, std::size_t size) {
  (rule.layout == CodeLayout::inverted ? fill_stereo<CodeLayout::inverted>
                                       : fill_stereo<CodeLayout::linear>)(rule, table, size);
}

void build_mono_table(const MonoRule& rule, std::uint16_t* table, std::size_t size) {
  switch (rule.layout) {
    case CodeLayout::inverted:
      fill_mono<CodeLayout::inverted>(rule, table, 1, smaller(size, 65535), 0);
      break;
    case CodeLayout::linear:
      fill_mono<CodeLayout::linear>(rule, table, 0, smaller(size, kDisparityCodeEnd), 0);
      break;
    case CodeLayout::signed_14_bit:
      // The code's upper two bits do not count, so the numbers 0 to 8191 and -8192 to -1 repeat four
      // times.
      for (std::size_t begin = 0; begin < size; begin += 8192) {
        const double origin = static_cast<double>(begin % 16384 == 0 ? begin : begin + 8192);
        fill_mono<CodeLayout::linear>(rule, table, begin, smaller(size, smaller(begin + 8192, 65535)),
                                      origin);
      }
      if (size > ZV_DISPARITY_UNMATCHED_SIGNED) table[ZV_DISPARITY_UNMATCHED_SIGNED] = 0;
      break;
  }
}

}  // namespace

extern const DepthTableKernels depth_table = {build_stereo_table, build_mono_table};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
