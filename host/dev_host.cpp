#include "dev_host.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <deque>
#include <limits>
#include <mutex>
#include <utility>

#include "counted.h"
#include "host_call.h"

struct zv_error {
  std::string message;
  std::string function;
  std::string args;
  std::int32_t exception_type;
  std::int32_t status = 1;
};

struct zv_stream_profile_t {
  explicit zv_stream_profile_t(devhost::ProfileTraits s);
  zv_stream_profile_t(const zv_stream_profile_t&) = delete;
  zv_stream_profile_t& operator=(const zv_stream_profile_t&) = delete;
  ~zv_stream_profile_t();

  void dispose() { delete this; }

  devhost::ProfileTraits traits;
  mutable std::atomic<long> references{1};
};

struct zv_frame_t {
  explicit zv_frame_t(devhost::FrameTraits s);
  zv_frame_t(const zv_frame_t&) = delete;
  zv_frame_t& operator=(const zv_frame_t&) = delete;
  ~zv_frame_t();

  void dispose() { delete this; }
  void copy_info(const zv_frame_t& from);
  unsigned char* bytes() const;
  std::size_t size() const { return data.size(); }
  bool assign(const void* bytes, std::uint32_t count);

  devhost::FrameTraits traits;  // without the pixels
  std::vector<unsigned char> data;
  devhost::Profile profile;
  devhost::Frame depth;  // of a set
  mutable std::atomic<long> references{1};
};

namespace devhost {

namespace {

std::atomic<long> live_frames{0};
std::atomic<long> live_profiles{0};
std::atomic<bool> data_hidden{false};
std::atomic<std::uint32_t> largest_frame{std::numeric_limits<std::uint32_t>::max()};

struct Fault {
  std::string function;
  int countdown = 0;
  bool happened = false;
};

struct Registry {
  std::mutex mutex;
  std::deque<std::unique_ptr<zv_error>> errors;
  bool logging = false;
  std::vector<std::string> log;
  Fault fault;
};
Registry& registry() {
  static Registry instance;
  return instance;
}
// Set while the log runs or a fault is armed, so that other calls need no lock.
std::atomic<bool> watched{false};

zv_error* add_error(const char* message, const char* function, const char* args,
                    std::int32_t exception_type) {
  const auto text = [](const char* t) { return std::string(t != nullptr ? t : ""); };
  auto error =
      std::make_unique<zv_error>(zv_error{text(message), text(function), text(args), exception_type});
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.errors.push_back(std::move(error));
  return r.errors.back().get();
}

bool note_call(const char* function) {
  if (!watched.load(std::memory_order_relaxed)) return false;
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  if (r.logging) r.log.emplace_back(function);
  const bool meant = r.fault.function.empty() || r.fault.function == function;
  if (r.fault.countdown == 0 || !meant || --r.fault.countdown > 0) return false;
  return r.fault.happened = true;
}

zv_error* add_failure(const char* message, const char* function, const char* args,
                      std::int32_t exception_type) {
  return add_error(message, function, args, exception_type);
}

/// A call that is logged, and in which an armed fault happens.
class Call : public hosts::HostCall<add_failure> {
 public:
  Call(const char* function, zv_error** error) : HostCall(function, error) {
    if (note_call(function)) fail("injected fault", "", 7);
  }
};

zv_frame_t* copy_of(const zv_frame_t& other) {
  Frame frame(new zv_frame_t({.type = other.traits.type}));
  frame->copy_info(other);
  frame->data = other.data;
  if (other.depth) frame->depth.reset(copy_of(*other.depth));
  return frame.release();
}

zv_frame_t* new_frame(std::int32_t type, std::int32_t format, std::uint32_t size) {
  if (size > largest_frame) return nullptr;
  Frame frame(new zv_frame_t({.type = type, .format = format}));
  frame->data.resize(size);
  return frame.release();
}

zv_frame_t* new_frame_like(const zv_frame_t& other, bool copy_data) {
  if (copy_data) return copy_of(other);
  Frame frame(new zv_frame_t({.type = other.traits.type}));
  frame->copy_info(other);
  frame->data.resize(other.data.size(), 0xA5);  // unspecified, and not by chance right
  return frame.release();
}

zv_stream_profile_t* new_profile(const ProfileTraits& traits) { return new zv_stream_profile_t(traits); }

}  // namespace

void Release::operator()(zv_frame_t* frame) const { counted::drop(frame); }
void Release::operator()(zv_stream_profile_t* profile) const { counted::drop(profile); }

Profile make_profile(const ProfileTraits& traits) { return Profile(new zv_stream_profile_t(traits)); }

Frame make_frame(const FrameTraits& traits) {
  Frame frame(new zv_frame_t(traits));
  frame->data.resize(traits.pixels.size() * sizeof traits.pixels[0]);
  if (!traits.pixels.empty()) std::memcpy(frame->data.data(), traits.pixels.data(), frame->data.size());
  frame->profile =
      make_profile({traits.format, traits.width, traits.height, traits.intrinsic, traits.disparity});
  return frame;
}

Frame make_frame_set(Frame depth) {
  Frame set(new zv_frame_t({.type = ZV_FRAME_TYPE_SET}));
  set->depth = std::move(depth);
  return set;
}

Frame depth_frame_of(const zv_frame_t* frame) {
  if (frame->traits.type == ZV_FRAME_TYPE_SET && frame->depth) frame = frame->depth.get();
  return Frame(counted::share(frame));
}

void attach_profile(zv_frame_t* frame, const ProfileTraits& traits) {
  frame->profile = make_profile(traits);
}

FrameTraits inspect(const zv_frame_t* frame) {
  FrameTraits traits = frame->traits;
  traits.pixels.resize(frame->data.size() / sizeof traits.pixels[0]);
  if (!traits.pixels.empty())
    std::memcpy(traits.pixels.data(), frame->data.data(), traits.pixels.size() * 2);
  if (frame->profile) {
    traits.disparity = frame->profile->traits.disparity;
    traits.intrinsic = frame->profile->traits.intrinsic;
  }
  return traits;
}

ProfileTraits inspect_profile(const zv_frame_t* frame) {
  return frame->profile ? frame->profile->traits : ProfileTraits{};
}

LiveObjects live_objects() { return {live_frames, live_profiles}; }

std::int32_t error_status(const zv_error* error) { return error->status; }

void clear_errors() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.errors.clear();
}

std::size_t error_count() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  return r.errors.size();
}

void start_call_log() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.logging = true;
  r.log.clear();
  watched = true;
}

std::vector<std::string> stop_call_log() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.logging = false;
  watched = r.fault.countdown > 0;
  return std::move(r.log);
}

void fail_call(std::string_view function, int occurrence) {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.fault = {std::string(function), occurrence, false};
  watched = true;
}

bool clear_fault() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  watched = r.logging;
  return std::exchange(r.fault, {}).happened;
}

void hide_data(bool hidden) { data_hidden = hidden; }

void refuse_frames_above(std::uint32_t bytes) { largest_frame = bytes; }

}  // namespace devhost

using devhost::FrameTraits;
using devhost::ProfileTraits;

zv_stream_profile_t::zv_stream_profile_t(ProfileTraits s) : traits(std::move(s)) {
  ++devhost::live_profiles;
}
zv_stream_profile_t::~zv_stream_profile_t() { --devhost::live_profiles; }

zv_frame_t::zv_frame_t(devhost::FrameTraits s) : traits(std::move(s)) {
  traits.pixels.clear();
  ++devhost::live_frames;
}
zv_frame_t::~zv_frame_t() { --devhost::live_frames; }

void zv_frame_t::copy_info(const zv_frame_t& from) {
  const std::int32_t type = traits.type;
  traits = from.traits;
  traits.type = type;
  profile.reset(from.profile ? counted::share(from.profile.get()) : nullptr);
}

unsigned char* zv_frame_t::bytes() const {
  return devhost::data_hidden ? nullptr : const_cast<unsigned char*>(data.data());
}

bool zv_frame_t::assign(const void* bytes, std::uint32_t count) {
  const auto* const first = static_cast<const unsigned char*>(bytes);
  if (count != data.size()) {
    data = count != 0 ? std::vector(first, first + count) : std::vector<unsigned char>{};
  } else if (count != 0) {
    std::memmove(data.data(), first, count);
  }
  return true;
}

extern "C" {

zv_error* zv_create_error(int32_t status, const char* message, const char* function, const char* args,
                          int32_t exception_type) {
  zv_error* const error = devhost::add_error(message, function, args, exception_type);
  error->status = status;
  return error;
}
const char* zv_error_get_message(const zv_error* error) {
  return error ? error->message.c_str() : nullptr;
}
const char* zv_error_get_function(const zv_error* error) {
  return error ? error->function.c_str() : nullptr;
}
const char* zv_error_get_args(const zv_error* error) { return error ? error->args.c_str() : nullptr; }
int32_t zv_error_get_exception_type(const zv_error* error) { return error ? error->exception_type : 0; }

}  // extern "C"

namespace host = devhost;

#include "host_functions.inc"
