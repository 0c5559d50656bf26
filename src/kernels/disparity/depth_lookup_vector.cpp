#include "kernels/disparity/depth_lookup.h"
#include "kernels/simd/simd.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {

namespace {

/// Any quotient.
struct General {
  explicit General(const DepthQuotient& q)
      : first(U16::splat(q.first)),
        span(U16::splat(q.span)),
        hole(U16::splat(q.hole)),
        last(U16::splat(q.last)),
        is_signed(U16::splat(q.signed_14_bit ? 0xffff : 0)),
        divide(q.numerator, q.offset) {}

  U16 operator()(U16 code) const {
    const U16 number = code | (sign_extended_14(code) & is_signed);
    const U16 k = number - first;
    return divide(k, without(at_most(k, span) & at_most(code, last), equal(code, hole)));
  }

  U16 first, span, hole, last, is_signed;
  QuotientOf<false> divide;
};

/// A quotient without a hole, of an unsigned code with a whole offset: what most cameras have.
struct Simple {
  explicit Simple(const DepthQuotient& q)
      : first(U16::splat(q.first)), span(U16::splat(q.span)), divide(q.numerator, q.offset) {}

  U16 operator()(U16 code) const {
    const U16 k = code - first;
    return divide(k, at_most(k, span));
  }

  static bool covers(const DepthQuotient& q) {
    const bool hole_inside = static_cast<std::uint16_t>(q.hole - q.first) <= q.span;
    return !q.signed_14_bit && !hole_inside && QuotientOf<true>::takes(q.offset);
  }

  U16 first, span;
  QuotientOf<true> divide;
};

template <typename Convert>
void convert_all(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                 const Convert& convert) {
  const auto some = [&](std::size_t begin, std::size_t n) {
    convert(U16::load_first(source + begin, n)).store_first(target + begin, n);
  };
  // Stores that straddle cache lines cost twice, so whole vectors start where the target is aligned.
  constexpr std::size_t kBytes = U16::lanes * sizeof *target;
  std::size_t i = (kBytes - reinterpret_cast<std::uintptr_t>(target) % kBytes) % kBytes / sizeof *target;
  i = i < count ? i : count;
  some(0, i);
  const auto ahead = [=](std::size_t at) {
    prefetch(source + at, kSweepAhead);
    prefetch(target + at, kSweepAhead);
  };
  i = sweep(i, count, ahead, [&](std::size_t at) { convert(U16::load(source + at)).store(target + at); });
  some(i, count - i);
}

template <typename Quotient>
void convert_packed(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                    const Quotient& depth) {
  const U16 carried = U16::splat(15);
  convert_all(source, target, count, [&](U16 pixels) {
    return shifted_left<4>(depth(shifted_right<4>(pixels))) | (pixels & carried);
  });
}

void convert_plain_quotient(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                            const DepthQuotient& quotient) {
  if (Simple::covers(quotient)) return convert_all(source, target, count, Simple(quotient));
  convert_all(source, target, count, General(quotient));
}

void convert_packed_quotient(const std::uint16_t* source, std::uint16_t* target, std::size_t count,
                             const DepthQuotient& quotient) {
  if (Simple::covers(quotient)) return convert_packed(source, target, count, Simple(quotient));
  convert_packed(source, target, count, General(quotient));
}

}  // namespace

extern const DepthLookupKernels depth_lookup = {plain::convert_plain_codes, plain::convert_packed_codes,
                                                convert_plain_quotient, convert_packed_quotient};

}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL
