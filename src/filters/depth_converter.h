#ifndef FILTERPROCESSOR_FILTERS_DEPTH_CONVERTER_H
#define FILTERPROCESSOR_FILTERS_DEPTH_CONVERTER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "common/zeroed_buffer.h"
#include "kernels/disparity/depth_lookup.h"
#include "kernels/disparity/depth_table.h"
#include "kernels/kernel_set.h"

namespace filterprocessor {

/// A table of depth by disparity code, and the quickest way to apply it.
class DepthConverter {
 public:
  DepthConverter() = default;
  /// `size` entries of 0, at most kMaxDepthTable. Like the others without a table when there is no memory.
  explicit DepthConverter(std::size_t size, const KernelSet& kernels = active_kernels());
  DepthConverter(const StereoRule& rule, std::size_t size, const KernelSet& kernels = active_kernels());
  DepthConverter(const MonoRule& rule, std::size_t size, const KernelSet& kernels = active_kernels());

  bool has_table() const { return table_.data() != nullptr; }
  std::span<const std::uint16_t> entries() const { return {table_.data(), size_}; }
  /// A copy in which code 0 stands for depth 0.
  DepthConverter with_first_entry_cleared() const;

  /// target = table[source] for `count` pixels; codes past the table give 0. The target may be the source
  /// itself.
  void convert(const std::uint16_t* source, std::uint16_t* target, std::size_t count);
  /// The same for an image of `width` x `height` pixels out of a wider one, whose rows are `stride` apart.
  void convert(const std::uint16_t* source, std::size_t stride, std::uint16_t* target, std::size_t width,
               std::size_t height);
  /// The same for pixels whose high 12 bits hold the code and whose low 4 bits are carried through.
  void convert_packed(const std::uint16_t* source, std::uint16_t* target, std::size_t count);

  /// Whether convert() has found that computing gives every entry, and computes.
  bool computes() const { return plain_.quotient.has_value(); }
  bool computes_packed() const { return packed_.quotient.has_value(); }

 private:
  /// The rule as numerator / (code + offset), before rounding to 32-bit float.
  struct ExactQuotient {
    double numerator = 0;
    double offset = 0;
    bool signed_14_bit = false;
  };
  /// One format of codes. A table may serve one image only, so whether computing gives its entries is asked
  /// at its second use.
  struct Format {
    DepthLookupKernels::Load* load = nullptr;
    DepthLookupKernels::Compute* compute = nullptr;
    bool packed = false;
    int uses = 0;
    std::optional<DepthQuotient> quotient = {};

    void use(const DepthConverter& converter);
    void convert(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                 const std::uint16_t* table) const;
  };

  std::optional<DepthQuotient> find_quotient(const Format& format) const;

  std::size_t size_ = 0;
  ZeroedBuffer<std::uint16_t> table_;  ///< padded, so that every code of 16 bits has an entry
  std::optional<ExactQuotient> exact_;
  Format plain_;
  Format packed_;
};

}  // namespace filterprocessor

#endif
