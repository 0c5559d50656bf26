#include "frame_host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "counted.h"
#include "frame_objects.h"
#include "host_call.h"

namespace framehost {

namespace {

/// What the thread works on.
struct Work {
  Pool* pool = nullptr;
  zv_error* errors = nullptr;  // the last one made first
  void* offered = nullptr;
  std::size_t offered_size = 0;
};
thread_local Work work;

zv_error error_without_memory = {"no memory", "", "", ZV_EXCEPTION_INVALID_VALUE, nullptr};

template <std::size_t size>
void copy_text(char (&to)[size], const char* text) {
  std::snprintf(to, size, "%s", text != nullptr ? text : "");
}

zv_error* make_error(const char* message, const char* function, const char* args,
                     std::int32_t exception_type) {
  auto* const error = static_cast<zv_error*>(std::malloc(sizeof(zv_error)));
  if (error == nullptr) return &error_without_memory;
  copy_text(error->message, message);
  copy_text(error->function, function);
  copy_text(error->args, args);
  error->exception_type = exception_type;
  error->next = std::exchange(work.errors, error);
  return error;
}

using Call = hosts::HostCall<make_error>;

Frame filled_frame(Pool& pool, std::int32_t type, std::int32_t format, std::size_t size) {
  Frame frame(pool.take_frame());
  if (!frame) return nullptr;
  frame->traits.type = type;
  frame->traits.format = format;
  return frame->resize(size) ? std::move(frame) : nullptr;
}

zv_frame_t* new_frame(std::int32_t type, std::int32_t format, std::uint32_t size) {
  if (work.pool == nullptr) return nullptr;
  Frame frame = filled_frame(*work.pool, type, format, size);
  if (frame) std::memset(frame->data, 0, size);
  return frame.release();
}

zv_frame_t* new_frame_like(const zv_frame_t& other, bool copy_data) {
  Frame frame = filled_frame(other.pool, other.traits.type, other.traits.format, other.data_size);
  if (!frame) return nullptr;
  frame->copy_info(other);
  if (!copy_data) return frame.release();
  if (other.data_size != 0) std::memmove(frame->data, other.data, other.data_size);
  if (other.depth) frame->depth.reset(new_frame_like(*other.depth, true));
  return frame.release();
}

zv_stream_profile_t* new_profile(const hosts::ProfileTraits& traits) {
  zv_stream_profile_t* const profile = work.pool != nullptr ? work.pool->take_profile() : nullptr;
  if (profile != nullptr) profile->traits = traits;
  return profile;
}

Frame described_frame(Pool& pool, const hosts::FrameTraits& traits, const Profile& profile) {
  Frame frame(pool.take_frame());
  if (!frame) throw std::bad_alloc();
  frame->traits = traits;
  frame->profile.reset(profile ? counted::share(profile.get()) : nullptr);
  return frame;
}

std::size_t bytes_of(const hosts::FrameTraits& traits) {
  return std::size_t{traits.width} * traits.height * sizeof(std::uint16_t);
}

}  // namespace

void Release::operator()(zv_frame_t* frame) const { counted::drop(frame); }
void Release::operator()(zv_stream_profile_t* profile) const { counted::drop(profile); }
void LeavePool::operator()(Pool* pool) const { pool->leave(); }

PoolHandle make_pool() { return PoolHandle(new Pool); }

Scope::Scope(Pool& pool)
    : outer_pool_(std::exchange(work.pool, &pool)), outer_errors_(std::exchange(work.errors, nullptr)) {}

Scope::~Scope() {
  while (work.errors != nullptr) std::free(std::exchange(work.errors, work.errors->next));
  work = {outer_pool_, outer_errors_, nullptr, 0};
}

void Scope::offer(void* memory, std::size_t size) {
  work.offered = memory;
  work.offered_size = size;
}

Profile make_profile(Pool& pool, const hosts::ProfileTraits& traits) {
  Profile profile(pool.take_profile());
  if (!profile) throw std::bad_alloc();
  profile->traits = traits;
  return profile;
}

Frame borrow_frame(Pool& pool, const hosts::FrameTraits& traits, const Profile& profile,
                   const void* pixels) {
  Frame frame = described_frame(pool, traits, profile);
  frame->data = static_cast<unsigned char*>(const_cast<void*>(pixels));
  frame->data_size = bytes_of(traits);
  return frame;
}

Frame make_frame(Pool& pool, const hosts::FrameTraits& traits, const Profile& profile) {
  Frame frame = described_frame(pool, traits, profile);
  if (!frame->resize(bytes_of(traits))) throw std::bad_alloc();
  return frame;
}

Frame make_frame_set(Pool& pool, Frame depth) {
  Frame set(pool.take_frame());
  if (!set) throw std::bad_alloc();
  set->traits.type = ZV_FRAME_TYPE_SET;
  set->depth = std::move(depth);
  return set;
}

Frame depth_frame_of(const zv_frame_t* frame) {
  if (frame->traits.type == ZV_FRAME_TYPE_SET && frame->depth) frame = frame->depth.get();
  return Frame(counted::share(frame));
}

const hosts::FrameTraits& traits_of(const zv_frame_t* frame) { return frame->traits; }
const hosts::ProfileTraits* profile_of(const zv_frame_t* frame) {
  return frame->profile ? &frame->profile->traits : nullptr;
}
std::uint16_t* pixels_of(const zv_frame_t* frame) {
  return static_cast<std::uint16_t*>(static_cast<void*>(frame->data));
}
std::size_t pixel_count(const zv_frame_t* frame) { return frame->data_size / sizeof(std::uint16_t); }

}  // namespace framehost

void zv_frame_t::dispose() {
  pool.give_back(std::exchange(block, {}));
  data = nullptr;
  data_size = 0;
  profile.reset();
  depth.reset();
  const hosts::FrameTraits fresh;
  traits = fresh;
  pool.give_back(this);
}

void zv_frame_t::copy_info(const zv_frame_t& from) {
  const std::int32_t type = traits.type;
  traits = from.traits;
  traits.type = type;
  profile.reset(from.profile ? counted::share(from.profile.get()) : nullptr);
}

bool zv_frame_t::resize(std::size_t size) {
  using framehost::work;
  pool.give_back(std::exchange(block, {}));
  data_size = size;
  if (size == work.offered_size && work.offered != nullptr) {
    data = static_cast<unsigned char*>(std::exchange(work.offered, nullptr));
    return true;
  }
  block = pool.take_block(size);
  data = block.data();
  if (data == nullptr) data_size = 0;
  return data != nullptr;
}

bool zv_frame_t::assign(const void* bytes, std::uint32_t count) {
  if (count == data_size) {
    if (count != 0) std::memmove(data, bytes, count);
    return true;
  }
  framehost::Block old = std::exchange(block, {});  // `bytes` may be in it
  if (!resize(count)) return false;
  if (count != 0) std::memcpy(data, bytes, count);
  pool.give_back(std::move(old));
  return true;
}

extern "C" {

zv_error* zv_create_error(int32_t, const char* message, const char* function, const char* args,
                          int32_t exception_type) {
  return framehost::make_error(message, function, args, exception_type);
}
const char* zv_error_get_message(const zv_error* error) { return error ? error->message : nullptr; }
const char* zv_error_get_function(const zv_error* error) { return error ? error->function : nullptr; }
const char* zv_error_get_args(const zv_error* error) { return error ? error->args : nullptr; }
int32_t zv_error_get_exception_type(const zv_error* error) { return error ? error->exception_type : 0; }

}  // extern "C"

namespace host = framehost;
using hosts::FrameTraits;
using hosts::ProfileTraits;

#include "host_functions.inc"
