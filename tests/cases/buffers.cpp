#include "cases/buffers.h"

#include <algorithm>
#include <new>
#include <unistd.h>

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>

namespace filterprocessor {

GuardedBytes::GuardedBytes(std::span<const std::byte> content, std::size_t gap, bool at_end) {
  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t inner = (content.size() + gap + page - 1) / page * page;
  const std::size_t size = inner + 2 * page;
  void* const start = ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) throw std::bad_alloc();
  pages_ = {static_cast<std::byte*>(start), size};
  std::byte* const first = pages_.data() + page;
  if (inner != 0 && ::mprotect(first, inner, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  const std::size_t before = at_end ? inner - gap - content.size() : gap;
  bytes_ = {first + before, content.size()};
  std::ranges::copy(content, bytes_.begin());
  ASAN_POISON_MEMORY_REGION(first, before);
  ASAN_POISON_MEMORY_REGION(bytes_.data() + bytes_.size(), inner - before - bytes_.size());
}

GuardedBytes::~GuardedBytes() {
  ASAN_UNPOISON_MEMORY_REGION(pages_.data(), pages_.size());
  ::munmap(pages_.data(), pages_.size());
}

unsigned char* Buffers::work_space(std::size_t size) {
  const std::vector<std::byte> content(size, std::byte{0xa5});
  return reinterpret_cast<unsigned char*>(add(content, 1, work_spaces_));
}

std::byte* Buffers::add(std::span<const std::byte> content, std::size_t unit, List& list) {
  // Half of all buffers touch a guard page, the others lie up to eight values off, so that alignments
  // vary.
  const std::size_t gap = placements_ >> 1 & 15;
  list.push_back(
      std::make_unique<GuardedBytes>(content, gap < 8 ? 0 : (gap - 7) * unit, placements_ % 2 == 0));
  placements_ >>= 5;
  return list.back()->bytes().data();
}

std::string Buffers::difference_from(const Buffers& plain) const {
  for (std::size_t n = 0; n < compared_.size(); ++n) {
    const auto bytes = compared_[n]->bytes();
    const auto [at, expected] = std::ranges::mismatch(bytes, plain.compared_[n]->bytes());
    if (at == bytes.end()) continue;
    return "differs in buffer " + std::to_string(n) + ", byte " + std::to_string(at - bytes.begin()) +
           " of " + std::to_string(bytes.size()) + ": " + std::to_string(std::to_integer<int>(*at)) +
           ", not " + std::to_string(std::to_integer<int>(*expected));
  }
  return {};
}

}  // namespace filterprocessor
