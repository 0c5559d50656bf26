#include "levels.h"

#include <algorithm>

namespace filterprocessor::fuzz {

unsigned char* Buffers::work_space(std::size_t size) {
  const std::vector<std::byte> content(size, std::byte{0xa5});
  return reinterpret_cast<unsigned char*>(add(content, 1, others_));
}

std::byte* Buffers::add(std::span<const std::byte> content, std::size_t unit, List& list) {
  // Half of all buffers touch a guard page, the others lie up to eight values off, so that alignments
  // vary.
  const std::size_t gap = placements_ >> 1 & 15;
  const Placement placement{placements_ % 2 == 0, gap < 8 ? 0 : (gap - 7) * unit};
  placements_ >>= 5;
  list.push_back(std::make_unique<GuardedBytes>(content, placement));
  return list.back()->data();
}

void Buffers::require_equal(const Buffers& plain, std::string_view level) const {
  for (std::size_t n = 0; n < compared_.size(); ++n) {
    const auto bytes = compared_[n]->bytes();
    const auto expected = plain.compared_[n]->bytes();
    const auto [at, _] = std::mismatch(bytes.begin(), bytes.end(), expected.begin());
    require(at == bytes.end(), std::string(level) + " equals the plain form in buffer " +
                                   std::to_string(n) + ", byte " + std::to_string(at - bytes.begin()) +
                                   " of " + std::to_string(bytes.size()));
  }
}

}  // namespace filterprocessor::fuzz
