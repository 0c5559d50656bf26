#ifndef FILTERPROCESSOR_COMMON_ZEROED_BUFFER_H
#define FILTERPROCESSOR_COMMON_ZEROED_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

namespace filterprocessor {

/// A work buffer for frames of one size, of plain values that start as 0. Cleared pages come from the
/// system untouched, so a frame that only claims to be large costs nothing.
template <typename Value>
class ZeroedBuffer {
 public:
  /// Makes a buffer of `per_pixel` values a pixel and `extra` more, unless there is one for this size.
  /// @return false when there is no memory; the old buffer is gone then too
  bool fit(std::uint64_t width, std::uint64_t height, std::uint64_t per_pixel = 1,
           std::uint64_t extra = 0) {
    if (values_ && width_ == width && height_ == height) return true;
    release();
    const std::uint64_t most =
        (std::numeric_limits<std::size_t>::max() / sizeof(Value) - extra) / per_pixel;
    if (height != 0 && width > most / height) return false;
    const std::uint64_t count = width * height * per_pixel + extra;
    values_.reset(static_cast<Value*>(std::calloc(count != 0 ? count : 1, sizeof(Value))));
    width_ = width;
    height_ = height;
    return values_ != nullptr;
  }
  void release() { values_.reset(); }

  /// Whether there is a buffer, and for at least so many pixels.
  bool holds(std::uint64_t width, std::uint64_t height) const {
    return values_ && width * height <= width_ * height_;
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
