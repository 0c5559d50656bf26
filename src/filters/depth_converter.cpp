#include "filters/depth_converter.h"

#include <algorithm>
#include <cmath>

namespace filterprocessor {

namespace {

constexpr std::size_t kPackedCodes = 4096;

std::uint16_t number_of(std::size_t code, bool signed_14_bit) {
  const std::size_t sign = signed_14_bit && (code & 8192) != 0 ? 0xc000 : 0;
  return static_cast<std::uint16_t>(signed_14_bit ? (code & 16383) | sign : code);
}

}  // namespace

DepthConverter::DepthConverter(std::size_t size, const KernelSet& kernels)
    : size_(size),
      plain_{kernels.depth_lookup.plain_codes, kernels.depth_lookup.plain_quotient, false},
      packed_{kernels.depth_lookup.packed_codes, kernels.depth_lookup.packed_quotient, true} {
  table_.fit(kMaxDepthTable, 1);
}

DepthConverter::DepthConverter(const StereoRule& rule, std::size_t size, const KernelSet& kernels)
    : DepthConverter(size, kernels) {
  if (!has_table()) return;
  kernels.depth_table.stereo(rule, table_.data(), size);
  const double offsets = rule.disparity_offset + rule.metadata_offset;
  const double depth_pixels = rule.focal_baseline * rule.unit;
  exact_ = rule.layout == CodeLayout::inverted
               ? ExactQuotient{-depth_pixels * rule.scale / 2,
                               -(328.375 - rule.min_disparity + offsets) * rule.scale / 2, false}
               : ExactQuotient{depth_pixels * rule.scale, offsets * rule.scale, false};
}

DepthConverter::DepthConverter(const MonoRule& rule, std::size_t size, const KernelSet& kernels)
    : DepthConverter(size, kernels) {
  if (!has_table()) return;
  kernels.depth_table.mono(rule, table_.data(), size);
  const double offset = rule.disparity_offset + 1 / rule.slope;
  const double depth_pixels = rule.numerator / rule.slope;
  exact_ =
      rule.layout == CodeLayout::inverted
          ? ExactQuotient{-depth_pixels * rule.scale / 2, -(200.375 + offset) * rule.scale / 2, false}
          : ExactQuotient{depth_pixels * rule.scale, offset * rule.scale,
                          rule.layout == CodeLayout::signed_14_bit};
}

DepthConverter DepthConverter::with_first_entry_cleared() const {
  DepthConverter copy(size_);
  if (!copy.has_table()) return copy;
  std::copy_n(table_.data(), kMaxDepthTable, copy.table_.data());
  copy.table_.data()[0] = 0;
  copy.exact_ = exact_;
  copy.plain_ = {plain_.load, plain_.compute, plain_.packed};
  copy.packed_ = {packed_.load, packed_.compute, packed_.packed};
  return copy;
}

std::optional<DepthQuotient> DepthConverter::find_quotient(const Format& format) const {
  if (!exact_ || format.compute == nullptr) return std::nullopt;
  constexpr double kLargest = 1e30;  // far below what 32-bit float holds; also refuses NaN
  if (!(std::fabs(exact_->numerator) < kLargest) || !(std::fabs(exact_->offset) < kLargest))
    return std::nullopt;
  const std::size_t codes = std::min(size_, format.packed ? kPackedCodes : kMaxDepthTable);

  const std::uint16_t* const table = table_.data();
  // The entries other than 0 must be one stretch of numbers with at most one code missing.
  int first = 65536;
  int last = -65536;
  const auto number = [this](std::size_t code) {
    const std::uint16_t bits = number_of(code, exact_->signed_14_bit);
    return exact_->signed_14_bit ? static_cast<std::int16_t>(bits) : int{bits};
  };
  for (std::size_t code = 0; code < codes; ++code) {
    if (table[code] == 0) continue;
    first = std::min(first, number(code));
    last = std::max(last, number(code));
  }
  if (first > last) return std::nullopt;
  std::size_t missing = 0;
  auto hole = static_cast<std::uint16_t>(last + 1);
  for (std::size_t code = 0; code < codes; ++code) {
    if (table[code] != 0 || number(code) < first || number(code) > last) continue;
    hole = static_cast<std::uint16_t>(code);
    if (++missing > 1) return std::nullopt;
  }

  DepthQuotient quotient = {.numerator = static_cast<float>(exact_->numerator),
                            .offset = static_cast<float>(exact_->offset + first),
                            .first = static_cast<std::uint16_t>(first),
                            .span = static_cast<std::uint16_t>(last - first),
                            .hole = hole,
                            .last = static_cast<std::uint16_t>(codes - 1),
                            .signed_14_bit = exact_->signed_14_bit};

  // Every code of the image format must give its entry.
  const std::size_t inputs = format.packed ? kPackedCodes : kMaxDepthTable;
  const auto gives_the_table = [&] {
    constexpr std::size_t kPart = 1024;
    std::uint16_t code[kPart];
    std::uint16_t depth[kPart];
    for (std::size_t begin = 0; begin < inputs; begin += kPart) {
      for (std::size_t i = 0; i < kPart; ++i) {
        code[i] = static_cast<std::uint16_t>(format.packed ? (begin + i) << 4 : begin + i);
      }
      format.compute(code, depth, kPart, quotient);
      for (std::size_t i = 0; i < kPart; ++i) {
        const int entry = table[begin + i];
        if (depth[i] != static_cast<std::uint16_t>(format.packed ? entry << 4 : entry)) return false;
      }
    }
    return true;
  };
  // The few quotients that lie next to an integer fall on the right side for some numerator in the
  // neighbourhood.
  constexpr int kNeighbours = 12;
  float up = quotient.numerator;
  float down = quotient.numerator;
  for (int i = 0; i < kNeighbours; ++i) {
    for (const float numerator : {up, down}) {
      quotient.numerator = numerator;
      if (gives_the_table()) return quotient;
    }
    up = std::nextafter(up, INFINITY);
    down = std::nextafter(down, -INFINITY);
  }
  return std::nullopt;
}

void DepthConverter::Format::use(const DepthConverter& converter) {
  if (uses < 2 && ++uses == 2) quotient = converter.find_quotient(*this);
}

void DepthConverter::Format::convert(const std::uint16_t* source, std::uint16_t* target,
                                     std::size_t count, const std::uint16_t* table) const {
  if (quotient) return compute(source, target, count, *quotient);
  load(source, target, count, table);
}

void DepthConverter::convert(const std::uint16_t* source, std::uint16_t* target, std::size_t count) {
  plain_.use(*this);
  plain_.convert(source, target, count, table_.data());
}

void DepthConverter::convert(const std::uint16_t* source, std::size_t stride, std::uint16_t* target,
                             std::size_t width, std::size_t height) {
  if (width == stride) return convert(source, target, width * height);
  plain_.use(*this);
  for (std::size_t y = 0; y < height; ++y) {
    plain_.convert(source + y * stride, target + y * width, width, table_.data());
  }
}

void DepthConverter::convert_packed(const std::uint16_t* source, std::uint16_t* target,
                                    std::size_t count) {
  packed_.use(*this);
  packed_.convert(source, target, count, table_.data());
}

}  // namespace filterprocessor
