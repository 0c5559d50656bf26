/// Memory of frames, and the frames and profiles themselves, kept for the next ones of their kind.
#ifndef FILTERPROCESSOR_HOST_FRAME_POOL_H
#define FILTERPROCESSOR_HOST_FRAME_POOL_H

#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

#include "frame_host.h"

namespace framehost {

/// Aligned memory of one frame.
class Block {
 public:
  Block() = default;
  explicit Block(std::size_t size);  // empty without memory
  Block(Block&& other) noexcept;
  Block& operator=(Block&& other) noexcept;
  ~Block();

  unsigned char* data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
};

class Pool {
 public:
  Pool();
  ~Pool();

  /// Memory of just so many bytes with unspecified contents; empty without memory.
  Block take_block(std::size_t size);
  /// An object with one reference, as it was left or new; null without memory.
  zv_frame_t* take_frame();
  zv_stream_profile_t* take_profile();
  void give_back(zv_frame_t* frame);
  void give_back(zv_stream_profile_t* profile);
  void give_back(Block block);
  /// The owner has gone; the pool ends with its last object.
  void leave();

 private:
  template <typename Object>
  Object* take(std::vector<Object*>& spare);
  template <typename Object>
  void put(std::vector<Object*>& spare, Object* object);
  void drop_user();

  std::atomic<std::size_t> users_{1};  // the owner and every object that is out
  std::mutex mutex_;
  std::vector<Block> blocks_;
  std::vector<zv_frame_t*> frames_;
  std::vector<zv_stream_profile_t*> profiles_;
};

}  // namespace framehost

#endif
