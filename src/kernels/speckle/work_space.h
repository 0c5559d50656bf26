#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_WORK_SPACE_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_WORK_SPACE_H

#include <cstddef>
#include <cstdint>

namespace filterprocessor {
namespace {

/// A block of memory that is given out from its start, aligned, until something does not fit.
class WorkSpace {
 public:
  WorkSpace(unsigned char* bytes, std::size_t size) : next_(bytes), left_(size) {}

  /// @return room for `count` values of T, or null from the first time on that there is not enough
  template <typename T>
  T* take(std::size_t count) {
    const std::size_t gap = gap_before<T>();
    if (next_ == nullptr || left_ < gap || (left_ - gap) / sizeof(T) < count) {
      next_ = nullptr;
      return nullptr;
    }
    unsigned char* const result = next_ + gap;
    next_ = result + count * sizeof(T);
    left_ -= gap + count * sizeof(T);
    return reinterpret_cast<T*>(result);
  }

  /// How many values of T there is room for.
  template <typename T>
  std::size_t room() const {
    const std::size_t gap = gap_before<T>();
    return next_ == nullptr || left_ < gap ? 0 : (left_ - gap) / sizeof(T);
  }

 private:
  template <typename T>
  std::size_t gap_before() const {
    return (alignof(T) - reinterpret_cast<std::uintptr_t>(next_) % alignof(T)) % alignof(T);
  }

  unsigned char* next_;
  std::size_t left_;
};

}  // namespace
}  // namespace filterprocessor

#endif
