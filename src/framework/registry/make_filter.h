#ifndef FILTERPROCESSOR_FRAMEWORK_REGISTRY_MAKE_FILTER_H
#define FILTERPROCESSOR_FRAMEWORK_REGISTRY_MAKE_FILTER_H

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace filterprocessor {

/// Hands out one block that is there already, of kSize bytes.
template <typename Value, std::size_t kSize>
struct BlockAllocator {
  using value_type = Value;
  template <typename Other>
  struct rebind {
    using other = BlockAllocator<Other, kSize>;
  };

  explicit BlockAllocator(void* memory) : block(memory) {}
  template <typename Other>
  BlockAllocator(const BlockAllocator<Other, kSize>& from) : block(from.block) {}

  Value* allocate(std::size_t) const noexcept {
    static_assert(sizeof(Value) <= kSize && alignof(Value) <= alignof(std::max_align_t));
    return static_cast<Value*>(block);
  }
  void deallocate(Value*, std::size_t) const noexcept { std::free(block); }
  template <typename Other>
  bool operator==(const BlockAllocator<Other, kSize>& other) const {
    return block == other.block;
  }

  void* block;
};

/// std::make_shared() that gives null when there is no memory: throwing would need some.
template <typename Filter>
std::shared_ptr<Filter> make_filter() {
  constexpr std::size_t kControlBlock = 64;
  constexpr std::size_t kSize = sizeof(Filter) + kControlBlock;
  void* const memory = std::malloc(kSize);
  if (memory == nullptr) return nullptr;
  return std::allocate_shared<Filter>(BlockAllocator<Filter, kSize>(memory));
}

}  // namespace filterprocessor

#endif
