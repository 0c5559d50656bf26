#include "cases/buffers.h"

#include <algorithm>
#include <new>
#include <unistd.h>

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>

namespace filterprocessor {

Buffers::~Buffers() {
  for (const auto pages : pages_) {
    ASAN_UNPOISON_MEMORY_REGION(pages.data(), pages.size());
    ::munmap(pages.data(), pages.size());
  }
}

unsigned char* Buffers::work_space(std::size_t size) {
  const std::vector<std::byte> content(size, std::byte{0xa5});
  return reinterpret_cast<unsigned char*>(add(content, 1).data());
}

std::span<std::byte> Buffers::add(std::span<const std::byte> content, std::size_t unit) {
  // Half of all buffers touch a guard page, the others lie up to eight values off: alignments vary.
  const std::size_t off = placements_ >> 1 & 15;
  const std::size_t gap = off < 8 ? 0 : (off - 7) * unit;
  const bool at_end = placements_ % 2 == 0;
  placements_ >>= 5;

  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t inner = (content.size() + gap + page - 1) / page * page;
  const std::size_t size = inner + 2 * page;
  void* const start = ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) throw std::bad_alloc();
  pages_.emplace_back(static_cast<std::byte*>(start), size);
  std::byte* const first = static_cast<std::byte*>(start) + page;
  if (inner != 0 && ::mprotect(first, inner, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  const std::size_t before = at_end ? inner - gap - content.size() : gap;
  const std::span bytes(first + before, content.size());
  std::ranges::copy(content, bytes.begin());
  ASAN_POISON_MEMORY_REGION(first, before);
  ASAN_POISON_MEMORY_REGION(bytes.data() + bytes.size(), inner - before - bytes.size());
  return bytes;
}

std::string Buffers::difference_from(const Buffers& plain) const {
  for (std::size_t n = 0; n < compared_.size(); ++n) {
    const auto bytes = compared_[n];
    const auto [at, expected] = std::ranges::mismatch(bytes, plain.compared_[n]);
    if (at == bytes.end()) continue;
    return "differs in buffer " + std::to_string(n) + ", byte " + std::to_string(at - bytes.begin()) +
           " of " + std::to_string(bytes.size()) + ": " + std::to_string(std::to_integer<int>(*at)) +
           ", not " + std::to_string(std::to_integer<int>(*expected));
  }
  return {};
}

}  // namespace filterprocessor
