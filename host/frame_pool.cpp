#include "frame_pool.h"

#include <cstdlib>
#include <utility>

#include "frame_objects.h"

namespace framehost {

namespace {

constexpr std::size_t kAlignment = 64;
// More than a chain needs between two frames. Memory of frames whose size has gone out of use is given back when others come.
constexpr std::size_t kMostSpare = 32;

}  // namespace

Block::Block(std::size_t size)
    : data_(static_cast<unsigned char*>(
          std::aligned_alloc(kAlignment, (size / kAlignment + 1) * kAlignment))),
      size_(data_ != nullptr ? size : 0) {}

Block::Block(Block&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

Block& Block::operator=(Block&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}

Block::~Block() { std::free(data_); }

Pool::Pool() {
  blocks_.reserve(kMostSpare);
  frames_.reserve(kMostSpare);
  profiles_.reserve(kMostSpare);
}

Pool::~Pool() {
  for (zv_frame_t* frame : frames_) delete frame;
  for (zv_stream_profile_t* profile : profiles_) delete profile;
}

Block Pool::take_block(std::size_t size) {
  {
    const std::lock_guard lock(mutex_);
    for (std::size_t i = blocks_.size(); i-- > 0;) {
      if (blocks_[i].size() != size) continue;
      Block block = std::move(blocks_[i]);
      blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(i));
      return block;
    }
  }
  return Block(size);
}

void Pool::give_back(Block block) {
  if (block.data() == nullptr) return;
  const std::lock_guard lock(mutex_);
  if (blocks_.size() == kMostSpare)
    blocks_.erase(blocks_.begin());  // the one that nobody has wanted for longest
  blocks_.push_back(std::move(block));
}

template <typename Object>
Object* Pool::take(std::vector<Object*>& spare) {
  Object* object = nullptr;
  {
    const std::lock_guard lock(mutex_);
    if (!spare.empty()) {
      object = spare.back();
      spare.pop_back();
    }
  }
  if (object == nullptr) object = new (std::nothrow) Object(*this);
  if (object == nullptr) return nullptr;
  object->references = 1;
  ++users_;
  return object;
}

template <typename Object>
void Pool::put(std::vector<Object*>& spare, Object* object) {
  {
    const std::lock_guard lock(mutex_);
    if (spare.size() < kMostSpare) spare.push_back(std::exchange(object, nullptr));
  }
  delete object;
  drop_user();
}

zv_frame_t* Pool::take_frame() { return take(frames_); }
zv_stream_profile_t* Pool::take_profile() { return take(profiles_); }
void Pool::give_back(zv_frame_t* frame) { put(frames_, frame); }
void Pool::give_back(zv_stream_profile_t* profile) { put(profiles_, profile); }
void Pool::leave() { drop_user(); }

void Pool::drop_user() {
  if (users_.fetch_sub(1) == 1) delete this;
}

}  // namespace framehost
