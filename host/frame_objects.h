/// The objects behind the host's handles.
#ifndef FILTERPROCESSOR_HOST_FRAME_OBJECTS_H
#define FILTERPROCESSOR_HOST_FRAME_OBJECTS_H

#include <atomic>

#include "frame_pool.h"

struct zv_error {
  char message[256];
  char function[64];
  char args[64];
  std::int32_t exception_type;
  zv_error* next;
};

struct zv_stream_profile_t {
  explicit zv_stream_profile_t(framehost::Pool& owner) : pool(owner) {}
  void dispose() { pool.give_back(this); }

  framehost::Pool& pool;
  hosts::ProfileTraits traits;
  mutable std::atomic<long> references{1};
};

struct zv_frame_t {
  explicit zv_frame_t(framehost::Pool& owner) : pool(owner) {}
  void dispose();

  void copy_info(const zv_frame_t& from);
  unsigned char* bytes() const { return data; }
  std::size_t size() const { return data_size; }
  /// New memory, the offered one where it fits. @return false: there is none
  bool resize(std::size_t size);
  bool assign(const void* bytes, std::uint32_t count);

  framehost::Pool& pool;
  hosts::FrameTraits traits;  // without the pixels
  framehost::Block block;     // empty where the memory is somebody else's
  unsigned char* data = nullptr;
  std::size_t data_size = 0;
  framehost::Profile profile;
  framehost::Frame depth;  // of a set
  mutable std::atomic<long> references{1};
};

#endif
