#include "kit/tuner/frame_cache.h"

#include <algorithm>
#include <utility>

namespace kit::tuner {

namespace {

std::size_t bytes_of(const SourceFrame& frame) {
  const std::size_t samples = frame.frame.pixels.size() + (frame.truth ? frame.truth->pixels.size() : 0);
  return samples * sizeof(std::uint16_t);
}

}  // namespace

FrameCache::FrameCache(FrameSource source, std::size_t most_bytes)
    : source_(std::move(source)), most_bytes_(most_bytes) {}

std::shared_ptr<const SourceFrame> FrameCache::frame(std::size_t index) {
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = entries_.find(index); found != entries_.end()) {
      found->second.used = ++uses_;
      return found->second.frame;
    }
  }
  // Two threads may load the same frame; that costs less than one that waits for the other.
  const auto loaded = std::make_shared<const SourceFrame>(source_.load(index));
  const std::lock_guard lock(mutex_);
  if (entries_.try_emplace(index, Entry{loaded, ++uses_}).second) bytes_ += bytes_of(*loaded);
  while (bytes_ > most_bytes_ && entries_.size() > 1) drop_oldest();
  return loaded;
}

void FrameCache::drop_oldest() {
  const auto oldest =
      std::min_element(entries_.begin(), entries_.end(),
                       [](const auto& a, const auto& b) { return a.second.used < b.second.used; });
  bytes_ -= bytes_of(*oldest->second.frame);
  entries_.erase(oldest);
}

}  // namespace kit::tuner
