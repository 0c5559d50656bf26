#include "guarded_bytes.h"

#include <algorithm>
#include <unistd.h>

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>

#include "target.h"

namespace filterprocessor::fuzz {

GuardedBytes::GuardedBytes(std::span<const std::byte> content, const Placement& placement) {
  static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t inner = (content.size() + placement.gap + page - 1) / page * page;
  const std::size_t size = inner + 2 * page;
  void* const start =
      ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  require(start != MAP_FAILED, "there is memory for a buffer");
  pages_ = {static_cast<std::byte*>(start), size};
  std::byte* const first = pages_.data() + page;
  if (inner != 0) require(::mprotect(first, inner, PROT_READ | PROT_WRITE) == 0, "a buffer can be used");

  const std::size_t before = placement.at_end ? inner - placement.gap - content.size() : placement.gap;
  bytes_ = {first + before, content.size()};
  std::copy(content.begin(), content.end(), bytes_.begin());
  ASAN_POISON_MEMORY_REGION(first, before);
  ASAN_POISON_MEMORY_REGION(bytes_.data() + bytes_.size(), inner - before - bytes_.size());
}

GuardedBytes::~GuardedBytes() {
  ASAN_UNPOISON_MEMORY_REGION(pages_.data(), pages_.size());
  ::munmap(pages_.data(), pages_.size());
}

}  // namespace filterprocessor::fuzz
