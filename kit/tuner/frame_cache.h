#ifndef KIT_TUNER_FRAME_CACHE_H
#define KIT_TUNER_FRAME_CACHE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "kit/pipeline/frame_source.h"

namespace kit::tuner {

/// The frames of a sequence; those used last are kept. For any thread.
class FrameCache {
 public:
  FrameCache(FrameSource source, std::size_t most_bytes);

  std::size_t size() const { return source_.names.size(); }
  const FrameName& name(std::size_t index) const { return source_.names[index]; }
  /// @param index below size()
  /// @throws Error when it cannot be loaded
  std::shared_ptr<const SourceFrame> frame(std::size_t index);

 private:
  struct Entry {
    std::shared_ptr<const SourceFrame> frame;
    std::uint64_t used;
  };
  void drop_oldest();

  FrameSource source_;
  std::size_t most_bytes_;
  std::mutex mutex_;  // of all below
  std::unordered_map<std::size_t, Entry> entries_;
  std::size_t bytes_ = 0;
  std::uint64_t uses_ = 0;
};

}  // namespace kit::tuner

#endif
