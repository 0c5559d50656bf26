#ifndef FILTERPROCESSOR_COMMON_ZEROED_BUFFER_H
#define FILTERPROCESSOR_COMMON_ZEROED_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace filterprocessor {

/// A work buffer for frames of one size, of plain values that start as 0. Cleared pages come from the
/// system untouched, so a frame that only claims to be large costs nothing.
template <typename Value>
class ZeroedBuffer {
 public:
  /// Makes a buffer of `per_pixel` values a pixel and `extra` more, unless there is one for this size.
  /// The old one is gone even if that fails. @throws std::bad_alloc
  void fit(std::uint64_t width, std::uint64_t height, std::uint64_t per_pixel = 1,
           std::uint64_t extra = 0) {
    if (fits(width, height)) return;
    values_.reset();
    const std::uint64_t most =
        (std::numeric_limits<std::size_t>::max() / sizeof(Value) - extra) / per_pixel;
    if (height != 0 && width > most / height) throw std::bad_alloc();
    values_.reset(static_cast<Value*>(std::calloc(width * height * per_pixel + extra, sizeof(Value))));
    if (!values_ && width * height * per_pixel + extra != 0) throw std::bad_alloc();
    width_ = width;
    height_ = height;
  }
  void release() { values_.reset(); }

  bool fits(std::uint64_t width, std::uint64_t height) const {
    return values_ && width_ == width && height_ == height;
  }
  Value* data() const { return values_.get(); }

 private:
  struct Free {
    void operator()(Value* values) const { std::free(values); }
  };

  std::unique_ptr<Value, Free> values_;
  std::uint64_t width_ = 0;
  std::uint64_t height_ = 0;
};

}  // namespace filterprocessor

#endif
